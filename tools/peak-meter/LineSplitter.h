#ifndef TOOLS_PEAKMETER_LINESPLITTER_H
#define TOOLS_PEAKMETER_LINESPLITTER_H

#include <QtCore/QByteArray>
#include <QtCore/QList>

/*
 * Makes lines of bytes that come in pieces. Of a long line only the beginning is kept, so that
 * input without any line feed takes no more memory than other input.
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

    // The lines that end in the next bytes of the input.
    QList<Line> take(const QByteArray& bytes);

    // The last line, if the input ended without a line feed.
    QList<Line> takeRest();

private:
    void append(const QByteArray& bytes);

    Line m_line;
};

#endif
