#ifndef TOOLS_PEAKMETER_LINESPLITTER_H
#define TOOLS_PEAKMETER_LINESPLITTER_H

#include <QtCore/QByteArray>
#include <QtCore/QList>

/*
 * Splits input that arrives in pieces into lines. Only the beginning of a long line is kept, so
 * that input without line feeds takes no more memory than other input.
 */
class LineSplitter
{
public:
    static constexpr int maxLength = 4096;

    struct Line
    {
        QByteArray text;
        bool isCut = false;
    };

    // Returns the lines that end in the next bytes of the input.
    QList<Line> take(const QByteArray& bytes);

    // Returns the last line, if the input ended without a line feed.
    QList<Line> takeRest();

private:
    void append(const QByteArray& bytes);

    Line m_line;
};

#endif
