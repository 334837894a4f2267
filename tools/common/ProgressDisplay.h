#ifndef TOOLS_COMMON_PROGRESSDISPLAY_H
#define TOOLS_COMMON_PROGRESSDISPLAY_H

#include <QtCore/QString>

#include <cstdio>

/*
 * Standard output, or standard error, as a place for progress. On a terminal the last line is
 * redrawn in place; it needs no more of the terminal than a carriage return, which a serial console
 * has too. In a pipe or a file there are only the lines that stay.
 */
class ProgressDisplay
{
public:
    explicit ProgressDisplay(FILE* stream = stdout);

    // Whether there is a line that can be redrawn.
    bool isLive() const;

    // How many characters of the redrawn line can be seen.
    int columns() const;

    // A line that stays, on standard output in any case.
    void showEvent(const QString& line);

    // Redraws the last line; nothing in a pipe.
    void showStatus(const QString& text);

    // Takes the redrawn line away.
    void clearStatus();

private:
    void redraw(const QString& text) const;

    FILE* const m_stream;
    bool m_isLive;
    int m_statusWidth;
};

#endif
