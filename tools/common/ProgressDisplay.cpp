#include "ProgressDisplay.h"

#include "CommandLine.h"

#include <sys/ioctl.h>
#include <unistd.h>

ProgressDisplay::ProgressDisplay(FILE* stream)
    : m_stream(stream), m_isLive(isatty(fileno(stream)) != 0), m_statusWidth(0)
{
}

bool ProgressDisplay::isLive() const
{
    return m_isLive;
}

// The last column remains free: some terminals wrap a full line.
int ProgressDisplay::columns() const
{
    constexpr int usualColumns = 80;

    winsize size = {};
    const bool isKnown = ioctl(fileno(m_stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
    return (isKnown ? size.ws_col : usualColumns) - 1;
}

void ProgressDisplay::showEvent(const QString& line)
{
    clearStatus();
    CommandLine::print(line);
}

void ProgressDisplay::showStatus(const QString& text)
{
    if (!m_isLive) {
        return;
    }
    const QString fitting = text.left(columns());
    // Spaces overwrite the rest of a longer line.
    redraw(fitting.leftJustified(m_statusWidth));
    m_statusWidth = fitting.size();
}

void ProgressDisplay::clearStatus()
{
    if (m_statusWidth > 0) {
        redraw(QString(m_statusWidth, QLatin1Char(' ')) + QLatin1Char('\r'));
        m_statusWidth = 0;
    }
}

void ProgressDisplay::redraw(const QString& text) const
{
    std::fputs((QLatin1Char('\r') + text).toUtf8().constData(), m_stream);
    std::fflush(m_stream);
}
