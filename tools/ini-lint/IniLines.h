#ifndef TOOLS_INILINT_INILINES_H
#define TOOLS_INILINT_INILINES_H

#include <QtCore/QByteArray>
#include <QtCore/QVector>

/*
 * Takes a stretch of an INI text apart into lines as QSettings does: a line goes on after a line
 * feed in quotes or after a backslash, and ends at a semicolon outside of quotes. Comments and
 * blank lines are passed over.
 */
class IniLines
{
public:
    IniLines(const QByteArray& text, int begin, int end);

    // Goes to the next line; false at the end.
    bool next();

    // Where the line begins and ends, and its first equals sign outside of quotes; -1 without one.
    int begin() const { return m_begin; }
    int end() const { return m_position; }
    int equals() const { return m_equals; }

    // Whether a semicolon ended the line, and whether the end came while a quote was open.
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

// Finds the numbers of lines as an editor counts them, from 1.
class LineNumbers
{
public:
    explicit LineNumbers(const QByteArray& text);

    int at(int position) const;

private:
    QVector<int> m_starts; // of the lines behind the first
};

#endif
