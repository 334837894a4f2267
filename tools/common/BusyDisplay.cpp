#include "BusyDisplay.h"

#include "CommandLine.h"

#include <chrono>

BusyDisplay::BusyDisplay(const QString& activity) : m_activity(activity)
{
    m_clock.start();
    if (m_display.isLive()) {
        m_thread = std::thread([this] { redraw(); });
    }
}

BusyDisplay::~BusyDisplay()
{
    if (m_thread.joinable()) {
        {
            const std::lock_guard<std::mutex> locker(m_mutex);
            m_mustEnd = true;
        }
        m_isOver.notify_one();
        m_thread.join();
    }
    m_display.clearStatus();
}

void BusyDisplay::setActivity(const QString& activity)
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    m_activity = activity;
}

void BusyDisplay::print(const QString& line)
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    m_display.showEvent(line);
}

void BusyDisplay::printError(const QString& error)
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    m_display.clearStatus();
    CommandLine::printError(error);
}

void BusyDisplay::redraw()
{
    constexpr std::chrono::milliseconds interval(300);

    std::unique_lock<std::mutex> locker(m_mutex);
    while (!m_isOver.wait_for(locker, interval, [this] { return m_mustEnd; })) {
        m_display.showStatus(
            QStringLiteral("%1 s: %2").arg(m_clock.elapsed() / 1000).arg(m_activity));
    }
}
