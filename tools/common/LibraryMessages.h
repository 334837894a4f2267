#ifndef TOOLS_COMMON_LIBRARYMESSAGES_H
#define TOOLS_COMMON_LIBRARYMESSAGES_H

#include <QtCore/QString>

/*
 * Captures the log messages of the library and of Qt. The programs print their own error messages;
 * log messages are printed only on request. The kind of some failures is known only from the
 * library's messages, whose texts are fixed.
 */
namespace LibraryMessages {

// Captures all later messages; areShown also prints them on standard error.
void capture(bool areShown);

// The number of messages, and whether any of them begins with, or contains, a text.
int count();
bool anyStartsWith(const QString& text);
bool anyContains(const QString& text);

// Whether the messages indicate an erased EEPROM, whose header has all bits set. In a sysfs file,
// the start address cannot be reached; in other files, the length exceeds the limit.
bool indicateErasedEeprom();

} // namespace LibraryMessages

#endif
