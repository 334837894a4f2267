#ifndef MISCTOOLS_FILEREADING_H
#define MISCTOOLS_FILEREADING_H

#include <QtCore/QByteArray>
#include <QtCore/QIODevice>
#include <QtCore/QString>

#include <algorithm>

// Returns what readAll() returns for a file that is open in text mode, for one that is not: no
// carriage returns, and null where nothing else is left. Qt's text mode looks at each byte, which
// takes twice as long.
inline QByteArray readAllInTextMode(QIODevice& file)
{
    QByteArray bytes = file.readAll();
    const int first = bytes.indexOf('\r');
    if (first < 0) {
        return bytes;
    }
    bytes.truncate(int(std::remove(bytes.begin() + first, bytes.end(), '\r') - bytes.begin()));
    return bytes.isEmpty() ? QByteArray() : bytes;
}

// Returns QString::fromUtf8(bytes), which ends at the first zero byte and looks for it byte by
// byte.
inline QString decodeToFirstZeroByte(const QByteArray& bytes)
{
    if (bytes.isNull()) {
        return QString();
    }
    const int zero = bytes.indexOf('\0');
    return QString::fromUtf8(bytes.constData(), zero >= 0 ? zero : bytes.size());
}

#endif
