#include "IniValue.h"

#include "IniLines.h"

#include <QtCore/QTextCodec>

#include <cctype>

namespace {

// Returns the meaning of the letter after a backslash; -1 if both are dropped.
int meaningOf(char letter)
{
    switch (letter) {
    case 'a':
        return '\a';
    case 'b':
        return '\b';
    case 'f':
        return '\f';
    case 'n':
        return '\n';
    case 'r':
        return '\r';
    case 't':
        return '\t';
    case 'v':
        return '\v';
    case '"':
    case '?':
    case '\'':
    case '\\':
        return letter;
    default:
        return -1;
    }
}

bool isDigit(char character, int base)
{
    if (base == 8) {
        return character >= '0' && character <= '7';
    }
    return std::isxdigit(static_cast<unsigned char>(character)) != 0;
}

} // namespace

IniValue::IniValue(const QByteArray& bytes, const QTextCodec* codec)
    : m_bytes(bytes), m_codec(codec)
{
    read();
}

void IniValue::read()
{
    skipBlanks();
    bool isWhole = true;
    while (isWhole && m_position < m_bytes.size()) {
        const char character = m_bytes.at(m_position);
        if (character == '\\') {
            isWhole = readEscape();
        } else if (character == '"') {
            readQuote();
        } else if (character == ',' && !m_isInQuotes) {
            m_firstComma = m_isList ? m_firstComma : m_position;
            m_isList = true;
            endText();
            ++m_position;
            skipBlanks();
        } else {
            readPlain();
        }
    }
    // Nothing is chopped after a trailing number or backslash.
    endText();
}

void IniValue::readPlain()
{
    int end = m_position + 1;
    while (end < m_bytes.size() && m_bytes.at(end) != '\\' && m_bytes.at(end) != '"' &&
           m_bytes.at(end) != ',') {
        ++end;
    }
    const QByteArray plain = m_bytes.mid(m_position, end - m_position);
    m_position = end;
    m_hasPlain = m_hasPlain || !(m_isInQuotes || plain.trimmed().isEmpty());
    m_text += m_codec != nullptr ? m_codec->toUnicode(plain) : QString::fromLatin1(plain);
}

void IniValue::readQuote()
{
    ++m_position;
    m_hasTextBesideQuotes = m_hasTextBesideQuotes || (m_isQuoted && !m_isInQuotes);
    m_isQuoted = true;
    m_hasQuotes = true;
    m_isInQuotes = !m_isInQuotes;
    if (!m_isInQuotes) {
        skipBlanks();
    }
}

// Returns false at a trailing backslash, which ends the value.
bool IniValue::readEscape()
{
    const int begin = m_position++;
    if (m_position == m_bytes.size()) {
        m_kept = m_text.size();
        m_lastBackslash = begin;
        return false;
    }
    m_hasPlain = m_hasPlain || !m_isInQuotes;
    const char letter = m_bytes.at(m_position++);
    const int meaning = meaningOf(letter);
    if (meaning >= 0) {
        m_text += QLatin1Char(char(meaning));
    } else if (letter == 'x' && m_position < m_bytes.size() &&
               isDigit(m_bytes.at(m_position), 16)) {
        readNumber(16);
    } else if (isDigit(letter, 8)) {
        --m_position;
        readNumber(8);
    } else if (IniLines::isLineEnd(letter) && m_position < m_bytes.size() &&
               IniLines::isLineEnd(m_bytes.at(m_position)) && m_bytes.at(m_position) != letter) {
        ++m_position;
    }
    if (!IniLines::isLineEnd(letter)) {
        QVector<Escape>& escapes = meaning == letter ? m_literalEscapes : m_strangeEscapes;
        escapes.append({begin, m_bytes.mid(begin, m_position - begin)});
    } else if (m_position == m_bytes.size()) {
        m_lastBackslash = begin;
    }
    m_kept = m_text.size();
    return true;
}

// Reads all digits that follow; the number is truncated to 16 bits.
void IniValue::readNumber(int base)
{
    char16_t number = 0;
    while (m_position < m_bytes.size() && isDigit(m_bytes.at(m_position), base)) {
        const int digit = QByteArray(1, m_bytes.at(m_position++)).toInt(nullptr, base);
        number = char16_t(number * base + digit);
    }
    m_text += QChar(number);
}

void IniValue::endText()
{
    if (!m_isQuoted) {
        chopBlanks();
    }
    m_hasTextBesideQuotes = m_hasTextBesideQuotes || (m_isQuoted && m_hasPlain);
    m_texts.append(m_text);
    m_text.clear();
    m_kept = 0;
    m_isQuoted = false;
    m_hasPlain = false;
}

void IniValue::skipBlanks()
{
    while (m_position < m_bytes.size() && IniLines::isBlank(m_bytes.at(m_position))) {
        ++m_position;
    }
    m_kept = m_text.size();
}

void IniValue::chopBlanks()
{
    while (m_text.size() > m_kept &&
           (m_text.endsWith(QLatin1Char(' ')) || m_text.endsWith(QLatin1Char('\t')))) {
        m_text.chop(1);
    }
}
