#include "HashGenerator.h"

#include "common/FileReading.h"
#include "common/Log.h"

#include <QtCore/QFile>

namespace {

// FNV-1a, 32 bits: http://www.isthe.com/chongo/tech/comp/fnv/
constexpr quint32 fnvOffsetBasis = 0x811C9DC5;
constexpr quint32 fnvPrime = 0x01000193;

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
    return QCryptographicHash::hash(readAllInTextMode(file), algorithm);
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
