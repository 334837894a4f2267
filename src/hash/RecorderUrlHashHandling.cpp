#include "RecorderUrlHashHandling.h"

#include <QtCore/QCryptographicHash>

RecorderUrlHashHandling::RecorderUrlHashHandling() = default;

RecorderUrlHashHandling::~RecorderUrlHashHandling() = default;

QByteArray RecorderUrlHashHandling::createUrlHash(const QByteArray& url)
{
    return QCryptographicHash::hash(url, QCryptographicHash::Md5);
}

QByteArray RecorderUrlHashHandling::createUrlHash(const QByteArray& first, const QByteArray& second,
                                                  const QByteArray& third)
{
    QCryptographicHash hash(QCryptographicHash::Md5);
    hash.addData(first);
    hash.addData(second);
    if (!third.isEmpty()) {
        hash.addData(third);
    }
    return hash.result();
}

QString RecorderUrlHashHandling::buildUUIDFromByteArray(const QByteArray& bytes)
{
    if (bytes.size() != 16) {
        return QString();
    }
    // 8-4-4-4-12 hexadecimal digits: a dash before the bytes 4, 6, 8 and 10.
    constexpr char digits[] = "0123456789abcdef";
    constexpr unsigned dashes = 1U << 4 | 1U << 6 | 1U << 8 | 1U << 10;
    QString text(36, Qt::Uninitialized);
    QChar* character = text.data();
    for (int i = 0; i < 16; ++i) {
        if (dashes >> i & 1U) {
            *character++ = QLatin1Char('-');
        }
        const auto byte = static_cast<unsigned char>(bytes.at(i));
        *character++ = QLatin1Char(digits[byte >> 4]);
        *character++ = QLatin1Char(digits[byte & 0xF]);
    }
    return text;
}
