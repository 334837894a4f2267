#ifndef TESTS_TIMEZONE_H
#define TESTS_TIMEZONE_H

#include <QtCore/QByteArray>
#include <QtCore/QtGlobal>

#include <ctime>

/*
 * Sets the time zone during the object's lifetime. Use a rule such as "UTC0" or
 * "CET-1CEST,M3.5.0,M10.5.0/3": a minimal system has no named zones.
 */
class TimeZone
{
public:
    explicit TimeZone(const QByteArray& zone) : m_previous(qgetenv("TZ"))
    {
        qputenv("TZ", zone);
        tzset();
    }

    ~TimeZone()
    {
        if (m_previous.isNull()) {
            qunsetenv("TZ");
        } else {
            qputenv("TZ", m_previous);
        }
        tzset();
    }

    Q_DISABLE_COPY(TimeZone)

private:
    const QByteArray m_previous;
};

#endif
