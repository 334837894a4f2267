#ifndef MISCTOOLS_TEXT_H
#define MISCTOOLS_TEXT_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <cstring>

namespace Text {

// Removes the carriage returns among the bytes from begin on, as a file in text mode does, which
// takes longer over texts that have none.
inline void dropCarriageReturns(QByteArray& bytes, int begin)
{
    if (!std::memchr(bytes.constData() + begin, '\r', size_t(bytes.size() - begin))) {
        return;
    }
    char* target = bytes.data() + begin;
    const char* const end = bytes.data() + bytes.size();
    for (const char* source = target; source != end; ++source) {
        *target = *source;
        target += *source != '\r' ? 1 : 0;
    }
    bytes.truncate(int(target - bytes.data()));
}

// Decodes UTF-8 up to the first zero byte: what the library reads are texts, and what follows a
// zero byte is not. Null bytes give a null text.
inline QString fromBytes(const QByteArray& bytes)
{
    if (bytes.isNull()) {
        return QString();
    }
    return QString::fromUtf8(bytes.constData(),
                             static_cast<int>(qstrnlen(bytes.constData(), uint(bytes.size()))));
}

} // namespace Text

#endif
