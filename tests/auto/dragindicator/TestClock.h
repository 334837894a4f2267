#ifndef TESTS_TESTCLOCK_H
#define TESTS_TESTCLOCK_H

#include <QtCore/QDateTime>
#include <QtCore/QStringList>

/*
 * Replaces the local clock during its lifetime, as seen by QDate::currentDate() and
 * QTime::currentTime(). The test program interposes these functions; without a test clock they
 * return the same as Qt's functions.
 */
class TestClock
{
public:
    // Starts at now and advances by step milliseconds after each reading.
    explicit TestClock(const QDateTime& now, qint64 step = 0);
    ~TestClock();

    void set(const QDateTime& now);

    // The readings since the last call, in order: "date" or "time".
    QStringList takeReadings();

private:
    Q_DISABLE_COPY(TestClock)
};

#endif
