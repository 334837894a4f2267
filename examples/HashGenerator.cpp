// Computes the digest of a file, and the hash of a text.

#include <HashGenerator.h>

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

    //! [digest]
    // Carriage returns are ignored: a text has the same digest with any line endings.
    const QByteArray digest =
        HashGenerator::createHashFromFile(file.fileName(), QCryptographicHash::Sha256);
    std::printf("sha256 %s\n", digest.toHex().constData()); // a digest is bytes, not text
    //! [digest]

    // A null array means that the file could not be opened. An empty file does have a digest.
    const QByteArray none =
        HashGenerator::createHashFromFile(QStringLiteral("missing.csv"), QCryptographicHash::Md5);
    std::printf("missing: %s\n", none.isNull() ? "no digest" : "a digest");

    // A fast hash, for tables. Do not use it for security: two texts may have the same hash.
    std::printf("key %08x\n", hashFromString("foobar"));
    return 0;
}
