#include "TextFileParser.h"

#include "common/FileReading.h"
#include "common/Log.h"

#include <QtCore/QFile>

namespace {

// Returns the matches of expression in text. If expression is invalid, returns an invalid iterator
// and sets the parser's error.
QRegularExpressionMatchIterator matchesOver(const QString& text,
                                            const QRegularExpression& expression,
                                            QRegularExpression::MatchOptions options,
                                            TextFileParser& parser)
{
    if (!expression.isValid()) {
        parser.setError(QStringLiteral("Invalid regular expresion: ") + expression.pattern());
        // A default-constructed iterator is valid. One that begins after the end of its text is
        // not, and Qt logs nothing.
        return expression.globalMatch(QString(), 1);
    }
    return expression.globalMatch(text, 0, QRegularExpression::NormalMatch, options);
}

// Assigns the matches to an iterator that does not leave the parser. Returns true if it is valid.
bool findMatches(const QString& text, const QRegularExpression& expression, TextFileParser& parser,
                 QRegularExpressionMatchIterator& matches)
{
    // The parser decoded the text itself: it is valid UTF-16 and need not be checked each time.
    matches = matchesOver(text, expression, QRegularExpression::DontCheckSubjectStringMatchOption,
                          parser);
    if (!matches.isValid()) {
        parser.setError(QStringLiteral("Invalid match on expresion: ") + expression.pattern());
    }
    return matches.isValid();
}

// Returns the first group of a match, or the entire match if no group took part.
QString resultOf(const QRegularExpressionMatch& match)
{
    // lastCapturedIndex() ignores groups after the last one that took part in the match.
    const bool hasGroup = match.lastCapturedIndex() >= 1;
    return match.captured(hasGroup ? 1 : 0);
}

} // namespace

TextFileParser::TextFileParser(const QString& filePath) : m_hasError(false)
{
    QFile file(filePath);
    if (!file.exists()) {
        setError(QStringLiteral("File doesn't exists: ") + file.fileName());
        return;
    }
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        setError(QStringLiteral("Can't open file ") + file.fileName() +
                 QStringLiteral(" IO Error: ") + file.errorString());
        return;
    }
    m_content = decodeToFirstZeroByte(readAllInTextMode(file));
}

TextFileParser::~TextFileParser() = default;

QString TextFileParser::match(const QRegularExpression& regularExpression)
{
    QRegularExpressionMatchIterator matches;
    // peekNext() does not search for the next match.
    return findMatches(m_content, regularExpression, *this, matches) && matches.hasNext()
               ? resultOf(matches.peekNext())
               : QString();
}

QStringList TextFileParser::multiMatch(const QRegularExpression& regularExpression)
{
    QStringList results;
    QRegularExpressionMatchIterator matches;
    if (findMatches(m_content, regularExpression, *this, matches)) {
        while (matches.hasNext()) {
            results.append(resultOf(matches.next()));
        }
    }
    return results;
}

QRegularExpressionMatchIterator
TextFileParser::internallMatch(const QRegularExpression& regularExpression)
{
    return matchesOver(m_content, regularExpression, QRegularExpression::NoMatchOption, *this);
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
