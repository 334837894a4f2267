#ifndef TESTS_QTVERSION_H
#define TESTS_QTVERSION_H

#include <QtCore/QVersionNumber>

/*
 * Whether the test runs with Qt 5.15.2 or older, which parses dates and handles QDir::NoFilter in
 * an iterator differently from 5.15.8 and 5.15.15. The versions in between are untested.
 */
inline bool isQtOfDebian11()
{
    return QVersionNumber::fromString(QLatin1String(qVersion())) <= QVersionNumber(5, 15, 2);
}

#endif
