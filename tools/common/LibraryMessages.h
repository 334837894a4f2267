#ifndef EXAMPLES_LIBRARYMESSAGES_H
#define EXAMPLES_LIBRARYMESSAGES_H

#include <QtCore/QString>

/*
 * The log messages of the library and of Qt. The programs say in their own words what went wrong;
 * as they are, messages come to the terminal only on request. The library tells the kind of some
 * failures in its messages alone, and their texts are fixed.
 */
namespace LibraryMessages {

// Takes all messages from here on; areShown passes them on to standard error.
void take(bool areShown);

// How many there were, and whether any of them begins with, or holds, this text.
int count();
bool anyStartsWith(const QString& text);
bool anyContains(const QString& text);

// Whether they say that the bytes of an EEPROM's header are those of an erased one. In a file of
// sysfs the start address, all bits set, cannot be reached; in other files the length is over the
// limit.
bool tellOfErasedEeprom();

} // namespace LibraryMessages

#endif
