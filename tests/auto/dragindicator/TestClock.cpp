#include "TestClock.h"

namespace {

// Used only by the test's thread.
bool isRunning = false;
QDateTime clockTime;
qint64 clockStep = 0;
QStringList clockReadings;

QDateTime readClock(const QString& reading)
{
    if (!isRunning) {
        return QDateTime::currentDateTime();
    }
    clockReadings.append(reading);
    const QDateTime now = clockTime;
    clockTime = clockTime.addMSecs(clockStep);
    return now;
}

} // namespace

QDate QDate::currentDate()
{
    return readClock("date").date();
}

QTime QTime::currentTime()
{
    return readClock("time").time();
}

TestClock::TestClock(const QDateTime& now, qint64 step)
{
    clockTime = now;
    clockStep = step;
    clockReadings.clear();
    isRunning = true;
}

TestClock::~TestClock()
{
    isRunning = false;
}

void TestClock::set(const QDateTime& now)
{
    clockTime = now;
}

QStringList TestClock::takeReadings()
{
    const QStringList readings = clockReadings;
    clockReadings.clear();
    return readings;
}
