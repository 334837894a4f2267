#ifndef TOOLS_INILINT_INILINES_H
#define TOOLS_INILINT_INILINES_H

#include <QtCore/QByteArray>
#include <QtCore/QVector>

/*
 * Splits a part of an INI text into lines, as QSettings does: a line continues after a line feed
 * that is in quotes or follows a backslash, and ends at a semicolon outside quotes. Comments and
 * empty lines are skipped.
 */
class IniLines
{
public:
    IniLines(const QByteArray& text, int begin, int end);

    // Advances to the next line; returns false at the end.
    bool next();

    // The beginning and end of the line, and its first equals sign outside quotes (-1 if none).
    int begin() const { return m_begin; }
    int end() const { return m_position; }
    int equals() const { return m_equals; }

    // Whether a semicolon ended the line, and whether it ended in an open quote.
    bool isCutBySemicolon() const { return m_isCutBySemicolon; }
    bool isQuoteOpen() const { return m_isQuoteOpen; }

    static bool isBlank(char character) { return character == ' ' || character == '\t'; }
    static bool isLineEnd(char character) { return character == '\n' || character == '\r'; }

private:
    void skipSpace();
    void skipComment();
    void skipEscape();

    const QByteArray m_text;
    const int m_textEnd;
    int m_position;
    int m_begin = 0;
    int m_equals = -1;
    bool m_isCutBySemicolon = false;
    bool m_isQuoteOpen = false;
};

// Converts positions to line numbers as editors count them, from 1.
class LineNumbers
{
public:
    explicit LineNumbers(const QByteArray& text);

    int at(int position) const;

private:
    QVector<int> m_starts; // of all lines but the first
};

#endif
