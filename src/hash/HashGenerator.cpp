#include "HashGenerator.h"

#include "common/Log.h"
#include "common/Text.h"

#include <QtCore/QFile>

#include <limits>

#include <sys/mman.h>
#include <unistd.h>

namespace {

// FNV-1a, 32 bits: http://www.isthe.com/chongo/tech/comp/fnv/
constexpr quint32 fnvOffsetBasis = 0x811C9DC5;
constexpr quint32 fnvPrime = 0x01000193;

// Asks for large pages behind bytes: of usual ones the system hands out thousands for a large file,
// which takes as long as reading it. Where it has none, nothing changes.
void preferLargePages(QByteArray& bytes)
{
    const auto pageSize = quintptr(sysconf(_SC_PAGESIZE));
    const auto address = reinterpret_cast<quintptr>(bytes.data());
    const quintptr begin = (address + pageSize - 1) / pageSize * pageSize;
    const quintptr end = (address + quintptr(bytes.size())) / pageSize * pageSize;
    madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
}

// The whole file in one read.
QByteArray readWhole(QFile& file)
{
    constexpr qint64 largeSize = 8 * 1024 * 1024;
    const qint64 size = file.size();
    if (file.isSequential() || size < largeSize || size > std::numeric_limits<int>::max() / 2) {
        return file.readAll();
    }
    QByteArray bytes(int(size), Qt::Uninitialized);
    preferLargePages(bytes);
    bytes.truncate(int(qMax<qint64>(file.read(bytes.data(), size), 0)));
    return bytes;
}

} // namespace

HashGenerator::HashGenerator() = default;

HashGenerator::~HashGenerator() = default;

QByteArray HashGenerator::createHashFromFile(const QString& filePath,
                                             const QCryptographicHash::Algorithm& algorithm)
{
    QFile file(filePath);
    if (!file.exists()) {
        MISCTOOLS_LOG(HashGenerator).warning() << "Can't find file:" << filePath << "!";
        return QByteArray();
    }
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        MISCTOOLS_LOG(HashGenerator).warning()
            << "Can't open file:" << filePath << "(" << file.errorString() << ")!";
        return QByteArray();
    }
    QByteArray bytes = readWhole(file);
    Text::dropCarriageReturns(bytes, 0);
    return QCryptographicHash::hash(bytes, algorithm);
}

uint hashFromString(const char* text)
{
    quint32 hash = fnvOffsetBasis;
    for (; *text != '\0'; ++text) {
        hash = (hash ^ static_cast<unsigned char>(*text)) * fnvPrime;
    }
    return hash;
}

uint hashFromString(const QVariant& value)
{
    if (!value.isValid() || !value.canConvert(QMetaType::QString)) {
        return 0;
    }
    return hashFromString(value.toString().toUtf8().constData());
}
