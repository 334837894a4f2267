#ifndef MISCTOOLS_FILEREADING_H
#define MISCTOOLS_FILEREADING_H

#include <QtCore/QByteArray>
#include <QtCore/QIODevice>

#include <algorithm>

// Returns what readAll() returns for a file that is open in text mode, for one that is not: no
// carriage returns, and null where nothing else is left. Qt's own text mode moves the remaining
// bytes once per carriage return's buffer and takes several times as long.
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

#endif
