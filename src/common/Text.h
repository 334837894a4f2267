#ifndef MISCTOOLS_TEXT_H
#define MISCTOOLS_TEXT_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace Text {

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
