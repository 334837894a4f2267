#ifndef TESTS_CASTTOASCII_H
#define TESTS_CASTTOASCII_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

class CastToAscii
{
public:
    QByteArray bytes(const QString& text) const { return text; }
};

#endif
