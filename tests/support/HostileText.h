#ifndef TESTS_HOSTILETEXT_H
#define TESTS_HOSTILETEXT_H

#include <QtCore/QByteArray>
#include <QtCore/QRandomGenerator>

// Random sequences of bytes that are hard for text parsers: carriage returns, zero bytes, byte
// order marks, incomplete UTF-8 sequences, and the text that the clean-up of INI files replaces.
QByteArray hostileText(QRandomGenerator& random);

#endif
