// The input is the image of an EEPROM. It is read unchanged and, if it has a complete header, again
// with a valid checksum, which random input rarely has.
#include "EepromImage.h"
#include "Fuzz.h"
#include "HardwareInfo.h"
#include "HardwareInfoReader.h"
#include "LiteralIniFile.h"

#include <QtCore/QDebug>
#include <QtCore/QRegularExpression>
#include <QtCore/QtEndian>

namespace {

constexpr quint32 blockLimit = 0xFFFF;
constexpr int startAddressField = EepromImage::headerAddress + 4;
constexpr int bytesToReadField = EepromImage::headerAddress + 8;
constexpr int checksumField = EepromImage::headerAddress + 12;
constexpr int expectedHeaderSize = EepromImage::headerSize;

quint32 wordAt(const QByteArray& image, int address)
{
    return qFromLittleEndian<quint32>(image.constData() + address);
}

// The block that the header describes; truncated if the image ends first.
QByteArray blockOf(const QByteArray& image)
{
    const quint32 address = wordAt(image, startAddressField);
    const quint32 size = wordAt(image, bytesToReadField);
    return address >= quint32(image.size()) || size > blockLimit
               ? QByteArray()
               : image.mid(int(address), int(size));
}

QStringList valuesOf(const HardwareInfo& info)
{
    return {info.hwVersion(), info.lpId(),        info.type(),
            info.typeName(),  info.hwCompIndex(), info.Comment()};
}

HardwareInfo usedRecord()
{
    HardwareInfo info;
    info.setType("untouched");
    info.setComment("untouched, too");
    return info;
}

// The values of a block in reading order, from the literal INI file.
QStringList literalRecord(const QByteArray& block)
{
    static const QStringList keys{"Version", "LP-ID", "Type", "TypeName", "CompatibilityIndex"};
    static const QString comment = "Comment";
    const QString group = "";
    if (block.isEmpty()) {
        qWarning() << "Error on writing to temporary file for version data!";
        for (const QString& key : keys) {
            qWarning() << "No valid 'IniFileManager' object for accessing section" << group
                       << "with key" << key << "!";
        }
        qWarning() << "No valid IniFileManager object for accessing section" << group << "with key"
                   << comment << "!";
        return valuesOf(HardwareInfo());
    }
    static int number = 0;
    ++number;
    const QString filePath = Fuzz::writeFile("block" + QString::number(number), block);
    QStringList values;
    {
        LiteralIniFile file(filePath, nullptr);
        file.sync();
        for (const QString& key : keys) {
            values += file.getValueString(group, key, QString());
        }
        values += file.contains(group, comment) ? file.getValueString(group, comment, QString())
                                                : QString();
    }
    Fuzz::removeFile(filePath);
    return values;
}

// The expected result of reading the image: the record, or the warning about its rejection.
QStringList literalRead(const QByteArray& image, const QString& filePath)
{
    const QStringList untouched = QStringList("no") + valuesOf(usedRecord());
    const int headerSize =
        qBound(0, image.size() - int(EepromImage::headerAddress), expectedHeaderSize);
    if (headerSize < expectedHeaderSize) {
        qWarning() << "Number of INI header bytes is" << headerSize << ", expected"
                   << expectedHeaderSize << "(file:" << filePath << ")!";
        return untouched;
    }
    const quint32 size = wordAt(image, bytesToReadField);
    if (size > blockLimit) {
        qWarning() << "Max. number of bytes for INI file exceeded"
                   << "(bytesToRead field =" << size << ", file:" << filePath << ")!";
        return untouched;
    }
    const QByteArray block = blockOf(image);
    if (quint32(block.size()) != size) {
        qWarning() << "Number of INI file bytes is" << expectedHeaderSize << ", expected"
                   << expectedHeaderSize << "(file:" << filePath << ")!";
        return untouched;
    }
    if (EepromImage::crc(block) != quint16(wordAt(image, checksumField))) {
        qWarning() << "Invalid checksum for INI block in eeprom binary file" << filePath << ".";
        return untouched;
    }
    return QStringList("yes") + literalRecord(block);
}

QStringList libraryRead(HardwareInfoReader& reader, const QString& filePath)
{
    HardwareInfo info = usedRecord();
    const bool isRead = reader.readHardwareInfoFromSysFs(Fuzz::path("hw.XXXXXX"), filePath, info);
    return QStringList(isRead ? QStringLiteral("yes") : QStringLiteral("no")) + valuesOf(info);
}

// The messages without the names of temporary files.
QStringList takeMessages()
{
    static const QRegularExpression blockFile(QRegularExpression::escape(Fuzz::directory()) +
                                              "/(hw\\.[A-Za-z]{6}|block\\d+)");
    return Fuzz::takeMessages().replaceInStrings(blockFile, Fuzz::fileName);
}

void verifyRead(const QByteArray& image)
{
    const QString filePath = Fuzz::writeFile("eeprom", image);
    const QStringList literal = literalRead(image, filePath);
    const QStringList expected = literal + takeMessages();
    HardwareInfoReader reader(nullptr);
    const QStringList actual = libraryRead(reader, filePath);
    Fuzz::verifySame("record and messages", actual + takeMessages(), expected);
    const QStringList again = libraryRead(reader, filePath);
    Fuzz::verifySame("record and messages of the second read", again + takeMessages(), expected);
}

void verifyHelpers(const QByteArray& bytes)
{
    HardwareInfoReader reader(nullptr);
    Fuzz::verify(reader.checksumXModemCRC(bytes.constData(), uint(bytes.size())) ==
                     EepromImage::crc(bytes),
                 "checksum of the bytes");
    // Only complete 16-bit halves are read.
    quint32 word = 0;
    for (int i = 0; i < 4 && i < bytes.size() / 2 * 2; ++i) {
        word |= quint32(quint8(bytes.at(i))) << 8 * i;
    }
    Fuzz::verify(reader.bytes2Uint32(bytes) == word, "word of the bytes");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QByteArray image = Fuzz::toBytes(data, size);
    verifyHelpers(image);
    verifyRead(image);
    if (image.size() >= EepromImage::headerEnd) {
        // If the block contains its own checksum, the new checksum may be invalid, too.
        qToLittleEndian(quint32(EepromImage::crc(blockOf(image))), image.data() + checksumField);
        verifyRead(image);
    }
    return 0;
}
