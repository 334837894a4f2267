#ifndef TESTS_TESTCLOCK_H
#define TESTS_TESTCLOCK_H

#include <QtCore/QDateTime>
#include <QtCore/QStringList>

/*
 * The local clock while it lives: what QDate::currentDate() and QTime::currentTime() tell. The
 * program's own two functions stand before Qt's; without a test clock they tell what Qt's do.
 */
class TestClock
{
public:
    // Stands at now, and goes on by step milliseconds after each reading.
    explicit TestClock(const QDateTime& now, qint64 step = 0);
    ~TestClock();

    void set(const QDateTime& now);

    // What was read since the last call, "date" or "time" each, in the order of the readings.
    QStringList takeReadings();

private:
    Q_DISABLE_COPY(TestClock)
};

#endif
