#include "HardwareInfo.h"
#include "HardwareInfoReader.h"
#include "support/Program.h"
#include "support/Workspace.h"

#include <QtCore/QDir>
#include <QtCore/QSettings>
#include <QtCore/QTemporaryFile>
#include <QtCore/QtEndian>

namespace {

constexpr int headerAddress = 20;
constexpr int headerSize = 16;
constexpr int imageSize = 32 * 1024;

QByteArray block()
{
    return "Type=17\n"
           "TypeName=Sample board\n"
           "Version=2.1\n"
           "LP-ID=123456\n"
           "CompatibilityIndex=3\n"
           "Comment=For measurements\n";
}

QByteArray image()
{
    QByteArray image(imageSize, '\xFF');
    const QByteArray text = block();
    const int blockAddress = headerAddress + headerSize;
    const quint16 checksum =
        HardwareInfoReader(nullptr).checksumXModemCRC(text.constData(), uint(text.size()));
    int address = headerAddress;
    for (const quint32 word :
         {0U, quint32(blockAddress), quint32(text.size()), quint32(checksum)}) {
        qToLittleEndian(word, image.data() + address);
        address += int(sizeof word);
    }
    image.replace(blockAddress, text.size(), text);
    return image;
}

// Elsewhere than the image, whose bytes are counted.
QString temporaryFile()
{
    return QDir::tempPath() + QStringLiteral("/bench.XXXXXX");
}

void addRead(Contenders& contenders)
{
    const QString filePath = Workspace::file(QStringLiteral("eeprom.bin"), image);
    contenders.subject(
        [filePath, temporary = temporaryFile()] {
            HardwareInfo info;
            HardwareInfoReader reader(nullptr);
            reader.readHardwareInfoFromSysFs(temporary, filePath, info);
            return info;
        },
        [](const HardwareInfo& info) {
            return info.typeName() == QStringLiteral("Sample board") &&
                   info.Comment() == QStringLiteral("For measurements");
        });
    // The text is at hand; what is left is the way through a file to the values.
    contenders.peer(
        QStringLiteral("QTemporaryFile, QSettings, 6 values"),
        [text = block(), temporary = temporaryFile()] {
            QTemporaryFile file(temporary);
            if (!file.open() || file.write(text) != text.size() || !file.flush()) {
                return QStringList();
            }
            const QSettings settings(file.fileName(), QSettings::IniFormat);
            QStringList values;
            for (const char* const key :
                 {"Type", "TypeName", "Version", "LP-ID", "CompatibilityIndex", "Comment"}) {
                values.append(settings.value(QLatin1String(key)).toString());
            }
            return values;
        },
        [](const QStringList& values) {
            return values.value(1) == QStringLiteral("Sample board");
        });
}

Operations operations()
{
    return {
        Operation(QStringLiteral("read an EEPROM"), addRead)
            .inTable()
            .counted(5)
            .limit(Measure::BytesAsked, headerSize + block().size()),
    };
}

} // namespace

int main(int argc, char* argv[])
{
    return Program::run(argc, argv, operations());
}
