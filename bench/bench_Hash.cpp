#include "HashGenerator.h"
#include "RecorderUrlHashHandling.h"
#include "UniqueIdGenerator.h"
#include "support/Program.h"
#include "support/Workspace.h"

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QUuid>

#include <atomic>
#include <memory>

namespace {

constexpr int mebi = 1024 * 1024;

// Text without carriage returns, which the library leaves out of the digest.
QString textFile(int bytes)
{
    return Workspace::file(QStringLiteral("text-%1").arg(bytes), [bytes] {
        const QByteArray line = "All is well, and nothing else is worth a line of its own.\n";
        return line.repeated(bytes / line.size() + 1).left(bytes);
    });
}

QByteArray md5sum(const QString& filePath)
{
    QProcess process;
    process.start(QStringLiteral("md5sum"), {filePath}, QIODevice::ReadOnly);
    if (!process.waitForFinished(-1) || process.exitCode() != 0) {
        qFatal("md5sum failed");
    }
    return QByteArray::fromHex(process.readAllStandardOutput().left(32));
}

void addFileHash(Contenders& contenders, int bytes)
{
    const QString filePath = textFile(bytes);
    contenders.subject(
        [filePath] { return HashGenerator::createHashFromFile(filePath, QCryptographicHash::Md5); },
        [filePath](const QByteArray& digest) { return digest == md5sum(filePath); });
    Contender& program = contenders.peer(
        QStringLiteral("md5sum, a child process"), [filePath] { return md5sum(filePath); },
        [](const QByteArray& digest) { return digest.size() == 16; });
    // The start of a program covers the work on small files.
    if (bytes >= 100 * mebi) {
        program.atMost(1.6);
    }
}

void addUuidText(Contenders& contenders)
{
    const QByteArray bytes = QByteArray::fromHex("00112233445566778899aabbccddeeff");
    const QString text = QStringLiteral("00112233-4455-6677-8899-aabbccddeeff");
    contenders.subject([bytes] { return RecorderUrlHashHandling::buildUUIDFromByteArray(bytes); },
                       equals(text));
    contenders.peer(
        QStringLiteral("QUuid::toString"),
        [bytes] { return QUuid::fromRfc4122(bytes).toString(QUuid::WithoutBraces); }, equals(text));
}

void addTextHash(Contenders& contenders)
{
    const QByteArray text = QByteArray("http://recorder.example/channels/1").repeated(2);
    const auto fnv = [text] {
        quint32 hash = 0x811C9DC5;
        for (const char byte : text) {
            hash = (hash ^ quint8(byte)) * 0x01000193;
        }
        return hash;
    };
    contenders.subject([text] { return hashFromString(text.constData()); }, equals(fnv()));
    contenders.peer(QStringLiteral("loop over a known length"), fnv, equals(fnv())).noDearer();
}

void addUniqueId(Contenders& contenders)
{
    contenders.subject([] { return int(UniqueIdGenerator::getInstance().getId()); },
                       [](int id) { return id >= 0; });
    const auto counter = std::make_shared<std::atomic<int>>(0);
    contenders.peer(
        QStringLiteral("std::atomic<int>, increment"), [counter] { return (*counter)++; },
        equals(0));
}

Operation fileHash(const QString& name, int bytes)
{
    return Operation(name, [bytes](Contenders& contenders) { addFileHash(contenders, bytes); });
}

Operations operations()
{
    Operations all = {
        fileHash(QStringLiteral("createHashFromFile, 1 MiB"), mebi).inTable().counted(2),
        fileHash(QStringLiteral("createHashFromFile, 100 MiB"), 100 * mebi)
            .inTable()
            .peakMeasured()
            // The file, and what little else is needed.
            .limit(Measure::PeakMemory, 101 * 1024),
        Operation(QStringLiteral("buildUUIDFromByteArray"), addUuidText).inTable().counted(100),
        Operation(QStringLiteral("hashFromString, 68 bytes"), addTextHash).inTable().counted(100),
        Operation(QStringLiteral("UniqueIdGenerator::getId"), addUniqueId).inTable().counted(100),
    };
    for (const int size : {mebi / 1024, mebi / 64, mebi / 4, 4 * mebi}) {
        all.push_back(
            fileHash(QStringLiteral("createHashFromFile plot, %1").arg(size), size)
                .inPlot(QStringLiteral("createHashFromFile"), QStringLiteral("bytes"), size));
    }
    return all;
}

} // namespace

int main(int argc, char* argv[])
{
    return Program::run(argc, argv, operations());
}
