#include <HashGenerator.h>
#include <RecorderUrlHashHandling.h>
#include <UniqueIdGenerator.h>

#include <QtCore/QFile>

#include <cstdio>

int main()
{
    QFile file(QStringLiteral("export.csv"));
    if (!file.open(QIODevice::WriteOnly)) {
        return 1;
    }
    file.write("time;value\r\n1;20.5\r\n");
    file.close();
    const QByteArray digest =
        HashGenerator::createHashFromFile(file.fileName(), QCryptographicHash::Sha256);
    std::printf("sha256 %s\n", digest.toHex().constData());
    const QByteArray none =
        HashGenerator::createHashFromFile(QStringLiteral("missing.csv"), QCryptographicHash::Md5);
    std::printf("missing: %s\n", none.isNull() ? "no digest" : "a digest");

    // Always the same identifier for the same URL.
    const QByteArray hash = RecorderUrlHashHandling::createUrlHash("http://10.0.0.5/trend/1");
    std::printf("id %s\n", qPrintable(RecorderUrlHashHandling::buildUUIDFromByteArray(hash)));

    // A key for tables.
    std::printf("key %08x\n", hashFromString("foobar"));

    // Never the same number within one process.
    UniqueIdGenerator& generator = UniqueIdGenerator::getInstance();
    const int first = generator.getId();
    const int second = generator.getId();
    std::printf("numbers %d %d\n", first, second);
    return 0;
}
