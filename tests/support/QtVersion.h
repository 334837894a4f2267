#ifndef TESTS_QTVERSION_H
#define TESTS_QTVERSION_H

#include <QtCore/QVersionNumber>

/*
 * Whether the Qt that the test runs with is 5.15.2 or older, which reads dates, and takes
 * QDir::NoFilter in an iterator, otherwise than 5.15.8 and 5.15.15 do. Of the versions between
 * nobody has tried any.
 */
inline bool isQtOfDebian11()
{
    return QVersionNumber::fromString(QLatin1String(qVersion())) <= QVersionNumber(5, 15, 2);
}

#endif
