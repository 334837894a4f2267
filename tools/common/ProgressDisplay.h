#ifndef TOOLS_COMMON_PROGRESSDISPLAY_H
#define TOOLS_COMMON_PROGRESSDISPLAY_H

#include <QtCore/QString>

#include <cstdio>

/*
 * Shows progress on standard output or standard error. On a terminal, the last line is redrawn in
 * place, with nothing but carriage returns, which serial consoles support. A pipe or a file gets
 * the permanent lines only.
 */
class ProgressDisplay
{
public:
    explicit ProgressDisplay(FILE* stream = stdout);

    // Whether the last line can be redrawn.
    bool isLive() const;

    // The number of visible characters of the redrawn line.
    int columns() const;

    // Prints a permanent line, always on standard output.
    void showEvent(const QString& line);

    // Redraws the last line; does nothing in a pipe.
    void showStatus(const QString& text);

    // Erases the redrawn line.
    void clearStatus();

private:
    void redraw(const QString& text) const;

    FILE* const m_stream;
    bool m_isLive;
    int m_statusWidth;
};

#endif
