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
    QString text = QString::fromLatin1(bytes.toHex());
    for (const int position : {8, 13, 18, 23}) {
        text.insert(position, QLatin1Char('-'));
    }
    return text;
}
