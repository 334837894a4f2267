#ifndef TESTS_HOSTILETEXT_H
#define TESTS_HOSTILETEXT_H

#include <QtCore/QByteArray>
#include <QtCore/QRandomGenerator>

// Bytes of what readers of text stumble over, in any order: carriage returns, zero bytes, byte
// order marks, halves of UTF-8 sequences, and what the clean-up of INI files replaces.
QByteArray hostileText(QRandomGenerator& random);

#endif
