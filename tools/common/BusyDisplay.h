#ifndef TOOLS_COMMON_BUSYDISPLAY_H
#define TOOLS_COMMON_BUSYDISPLAY_H

#include "ProgressDisplay.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QString>

#include <condition_variable>
#include <mutex>
#include <thread>

/*
 * Shows the activity of a program that is blocked, on standard error if that is a terminal; a
 * separate thread redraws the line. Work that finishes quickly shows nothing. While the object
 * exists, the program must print through it only.
 */
class BusyDisplay
{
public:
    explicit BusyDisplay(const QString& activity);
    ~BusyDisplay();

    void setActivity(const QString& activity);

    // Print a line on standard output, and an error on standard error.
    void print(const QString& line);
    void printError(const QString& error);

private:
    Q_DISABLE_COPY(BusyDisplay)

    void redraw();

    std::mutex m_mutex; // guards the members from here up to m_thread
    std::condition_variable m_isOver;
    ProgressDisplay m_display{stderr};
    QString m_activity;
    QElapsedTimer m_clock;
    bool m_mustEnd = false;
    std::thread m_thread;
};

#endif
