#ifndef MISCTOOLS_FILEREADING_H
#define MISCTOOLS_FILEREADING_H

#include <QtCore/QByteArray>
#include <QtCore/QIODevice>
#include <QtCore/QString>

#include <algorithm>
#include <cstring>

// Returns for a file in binary mode what readAll() returns in text mode: no carriage returns, and
// null if nothing else remains. Qt's text mode and QByteArray::indexOf() examine each byte, which
// takes twice as long as memchr().
inline QByteArray readAllInTextMode(QIODevice& file)
{
    QByteArray bytes = file.readAll();
    if (std::memchr(bytes.constData(), '\r', size_t(bytes.size())) == nullptr) {
        return bytes;
    }
    bytes.truncate(int(std::remove(bytes.begin(), bytes.end(), '\r') - bytes.begin()));
    return bytes.isEmpty() ? QByteArray() : bytes;
}

// Returns the same as QString::fromUtf8(bytes), which stops at the first zero byte, but searches
// for that byte with memchr().
inline QString decodeToFirstZeroByte(const QByteArray& bytes)
{
    if (bytes.isNull()) {
        return QString();
    }
    const char* const begin = bytes.constData();
    const void* const zero = std::memchr(begin, '\0', size_t(bytes.size()));
    return QString::fromUtf8(begin, zero != nullptr ? int(static_cast<const char*>(zero) - begin)
                                                    : bytes.size());
}

#endif
