// The input is used as a URL, a UUID, a file to hash, and a file name extension.
#include "ExportFileNameCreator.h"
#include "Fuzz.h"
#include "HashGenerator.h"
#include "RecorderUrlHashHandling.h"

#include <QtCore/QBuffer>
#include <QtCore/QRegularExpression>
#include <QtCore/QUuid>

namespace {

QByteArray md5(const QByteArray& bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Md5);
}

void verifyUrlHashes(const QByteArray& url)
{
    const QByteArray hash = RecorderUrlHashHandling::createUrlHash(url);
    Fuzz::verify(hash == md5(url), "the hash of a URL");
    // The hash does not depend on where the URL is split.
    const int first = url.isEmpty() ? 0 : quint8(url.at(0)) % (url.size() + 1);
    const int rest = url.size() - first;
    for (const int second : {0, rest / 2, rest}) {
        Fuzz::verify(RecorderUrlHashHandling::createUrlHash(url.left(first), url.mid(first, second),
                                                            url.mid(first + second)) == hash,
                     "the hash of a URL in parts");
    }
}

void verifyUuids(const QByteArray& bytes)
{
    for (const QByteArray& uuid : {bytes, bytes.left(16), bytes.right(16), md5(bytes)}) {
        const QString expected =
            uuid.size() == 16 ? QUuid::fromRfc4122(uuid).toString(QUuid::WithoutBraces) : QString();
        Fuzz::verifySame("UUID", RecorderUrlHashHandling::buildUUIDFromByteArray(uuid), expected);
    }
}

// FNV-1a according to its definition, up to a zero byte.
uint literalHash(const QByteArray& bytes)
{
    quint64 hash = 2166136261U;
    for (const char byte : bytes) {
        if (byte == '\0') {
            break;
        }
        hash = ((hash ^ quint8(byte)) * 16777619U) % (Q_UINT64_C(1) << 32);
    }
    return uint(hash);
}

void verifyTextHashes(const QByteArray& bytes)
{
    Fuzz::verify(hashFromString(bytes.constData()) == literalHash(bytes), "the hash of a text");
    const QString text = Fuzz::toText(bytes);
    Fuzz::verify(hashFromString(QVariant(text)) == literalHash(text.toUtf8()),
                 "the hash of a variant");
    Fuzz::verify(hashFromString(QVariant(bytes)) ==
                     literalHash(QVariant(bytes).toString().toUtf8()),
                 "the hash of a variant of bytes");
}

void verifyFileHashes(QByteArray bytes)
{
    const QString filePath = Fuzz::writeFile("file", bytes);
    QBuffer file(&bytes);
    file.open(QIODevice::ReadOnly | QIODevice::Text);
    const QByteArray text = file.readAll();
    for (const auto algorithm : {QCryptographicHash::Md5, QCryptographicHash::Sha256}) {
        Fuzz::verify(HashGenerator::createHashFromFile(filePath, algorithm) ==
                         QCryptographicHash::hash(text, algorithm),
                     "the hash of a file");
    }
    Fuzz::verifySame("messages", Fuzz::takeMessages(), QStringList());
}

void verifyFileName(const QString& extension)
{
    static const QRegularExpression beginning("^V0_\\d{4}_\\d\\d_\\d\\dT\\d\\d_\\d\\d_\\d\\d\\.$");
    const QString name = ExportFileNameCreator::create(extension);
    Fuzz::verify(name.endsWith(extension) &&
                     beginning.match(name.left(name.size() - extension.size())).hasMatch(),
                 "the name of an export");
    Fuzz::takeMessages(); // about the missing file with the device's index
}

} // namespace

int LLVMFuzzerInitialize(int*, char***)
{
    Fuzz::needDeviceRoot();
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes = Fuzz::toBytes(data, size);
    verifyUrlHashes(bytes);
    verifyUuids(bytes);
    verifyTextHashes(bytes);
    verifyFileHashes(bytes);
    verifyFileName(Fuzz::toText(bytes));
    return 0;
}
