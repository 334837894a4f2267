#include "LiteralTextFile.h"

QString LiteralTextFile::content(QByteArray bytes)
{
    bytes.replace("\r", "");
    if (bytes.isEmpty()) {
        return QString();
    }
    const int zero = bytes.indexOf('\0');
    if (zero >= 0) {
        bytes.truncate(zero);
    }
    return QString::fromUtf8(bytes);
}

QStringList LiteralTextFile::multiMatch(const QString& content,
                                        const QRegularExpression& expression)
{
    QStringList results;
    QRegularExpressionMatchIterator matches = expression.globalMatch(content);
    while (matches.hasNext()) {
        const QStringList texts = matches.next().capturedTexts();
        if (texts.size() >= 2) {
            results.append(texts.at(1));
        } else if (texts.size() == 1) {
            results.append(texts.at(0));
        }
    }
    return results;
}

QString LiteralTextFile::described(const QStringList& texts)
{
    QStringList descriptions;
    for (const QString& text : texts) {
        descriptions.append(text.isNull() ? QStringLiteral("null")
                                          : QLatin1Char('"') + text + QLatin1Char('"'));
    }
    return QLatin1Char('[') + descriptions.join(", ") + QLatin1Char(']');
}
