#ifndef TESTS_CASTFROMASCII_H
#define TESTS_CASTFROMASCII_H

#include <QtCore/QString>

class CastFromAscii
{
public:
    QString text() const { return "text"; }
};

#endif
