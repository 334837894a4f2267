#include "IniLines.h"

#include <algorithm>

IniLines::IniLines(const QByteArray& text, int begin, int end)
    : m_text(text), m_textEnd(end), m_position(begin)
{
}

bool IniLines::next()
{
    m_equals = -1;
    m_isCutBySemicolon = false;
    m_isQuoteOpen = false;
    skipSpace();
    while (m_position < m_textEnd && m_text.at(m_position) == ';') {
        skipComment();
        skipSpace();
    }
    m_begin = m_position;
    while (m_position < m_textEnd) {
        const char character = m_text.at(m_position);
        if (!m_isQuoteOpen && (isLineEnd(character) || character == ';')) {
            m_isCutBySemicolon = character == ';';
            break;
        }
        if (character == '=' && !m_isQuoteOpen && m_equals < 0) {
            m_equals = m_position;
        } else if (character == '"') {
            m_isQuoteOpen = !m_isQuoteOpen;
        }
        ++m_position;
        if (character == '\\') {
            skipEscape();
        }
    }
    return m_position > m_begin;
}

void IniLines::skipSpace()
{
    while (m_position < m_textEnd &&
           (isBlank(m_text.at(m_position)) || isLineEnd(m_text.at(m_position)))) {
        ++m_position;
    }
}

void IniLines::skipComment()
{
    while (m_position < m_textEnd && !isLineEnd(m_text.at(m_position))) {
        ++m_position;
    }
}

// Skips the character after a backslash; both characters of a two-character line ending.
void IniLines::skipEscape()
{
    if (m_position == m_textEnd) {
        return;
    }
    const char escaped = m_text.at(m_position++);
    if (m_position < m_textEnd && isLineEnd(escaped) && isLineEnd(m_text.at(m_position)) &&
        m_text.at(m_position) != escaped) {
        ++m_position;
    }
}

LineNumbers::LineNumbers(const QByteArray& text)
{
    for (int position = 0; position < text.size(); ++position) {
        const bool isFirstOfTwo = text.at(position) == '\r' && position + 1 < text.size() &&
                                  text.at(position + 1) == '\n';
        if (IniLines::isLineEnd(text.at(position)) && !isFirstOfTwo) {
            m_starts.append(position + 1);
        }
    }
}

int LineNumbers::at(int position) const
{
    return 1 +
           int(std::upper_bound(m_starts.cbegin(), m_starts.cend(), position) - m_starts.cbegin());
}
