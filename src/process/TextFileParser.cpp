#include "TextFileParser.h"

#include "common/Log.h"
#include "common/Text.h"

#include <QtCore/QFile>

TextFileParser::TextFileParser(const QString& filePath) : m_hasError(false)
{
    QFile file(filePath);
    if (!file.exists()) {
        setError(QStringLiteral("File doesn't exists: ") + file.fileName());
        return;
    }
    // Text mode drops carriage returns.
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        setError(QStringLiteral("Can't open file ") + file.fileName() +
                 QStringLiteral(" IO Error: ") + file.errorString());
        return;
    }
    m_content = Text::fromBytes(file.readAll());
}

TextFileParser::~TextFileParser() = default;

QString TextFileParser::match(const QRegularExpression& regularExpression)
{
    return multiMatch(regularExpression).value(0);
}

QStringList TextFileParser::multiMatch(const QRegularExpression& regularExpression)
{
    QStringList results;
    QRegularExpressionMatchIterator matches = internallMatch(regularExpression);
    if (!matches.isValid()) {
        setError(QStringLiteral("Invalid match on expresion: ") + regularExpression.pattern());
        return results;
    }
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        if (!match.isValid()) {
            continue;
        }
        // Groups behind the last one that took part are not among the captured texts.
        const bool hasGroup = match.lastCapturedIndex() >= 1;
        results.append(match.captured(hasGroup ? 1 : 0));
    }
    return results;
}

QRegularExpressionMatchIterator
TextFileParser::internallMatch(const QRegularExpression& regularExpression)
{
    if (!regularExpression.isValid()) {
        setError(QStringLiteral("Invalid regular expresion: ") + regularExpression.pattern());
        // A default-constructed iterator counts as valid. One that begins behind the end of its
        // text does not, and Qt says nothing of its own.
        return regularExpression.globalMatch(QString(), 1);
    }
    return regularExpression.globalMatch(m_content);
}

bool TextFileParser::hasError() const
{
    return m_hasError;
}

QString TextFileParser::getLastError() const
{
    return m_lastError;
}

void TextFileParser::clearLastError()
{
    m_hasError = false;
    m_lastError.clear();
}

void TextFileParser::setError(const QString& error)
{
    m_hasError = true;
    m_lastError = error;
    MISCTOOLS_LOG(TextFileParser).warning() << error;
}
