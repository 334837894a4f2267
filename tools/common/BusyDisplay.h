#ifndef TOOLS_COMMON_BUSYDISPLAY_H
#define TOOLS_COMMON_BUSYDISPLAY_H

#include "ProgressDisplay.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QString>

#include <condition_variable>
#include <mutex>
#include <thread>

/*
 * Shows on standard error, when that is a terminal, what keeps a program busy that cannot say so
 * itself meanwhile: a thread of its own redraws the line. Work that is soon done shows nothing, and
 * so does any in a pipe. Until the display ends, the program prints through it alone.
 */
class BusyDisplay
{
public:
    explicit BusyDisplay(const QString& activity);
    ~BusyDisplay();

    void setActivity(const QString& activity);

    // A line for standard output, and trouble for standard error.
    void print(const QString& line);
    void complain(const QString& trouble);

private:
    Q_DISABLE_COPY(BusyDisplay)

    void redraw();

    std::mutex m_mutex; // guards what follows, up to the thread
    std::condition_variable m_isOver;
    ProgressDisplay m_display{stderr};
    QString m_activity;
    QElapsedTimer m_clock;
    bool m_mustEnd = false;
    std::thread m_thread;
};

#endif
