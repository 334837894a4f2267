#ifndef MISCTOOLS_FILEREADING_H
#define MISCTOOLS_FILEREADING_H

#include <QtCore/QByteArray>
#include <QtCore/QIODevice>
#include <QtCore/QString>

#include <algorithm>
#include <cstring>

// Returns what readAll() returns for a file that is open in text mode, for one that is not: no
// carriage returns, and null where nothing else is left. Qt's text mode looks at each byte, and so
// does QByteArray::indexOf(): both take twice as long as memchr().
inline QByteArray readAllInTextMode(QIODevice& file)
{
    QByteArray bytes = file.readAll();
    if (std::memchr(bytes.constData(), '\r', size_t(bytes.size())) == nullptr) {
        return bytes;
    }
    bytes.truncate(int(std::remove(bytes.begin(), bytes.end(), '\r') - bytes.begin()));
    return bytes.isEmpty() ? QByteArray() : bytes;
}

// Returns QString::fromUtf8(bytes), which ends at the first zero byte and looks for it byte by
// byte.
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
