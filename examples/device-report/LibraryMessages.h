#ifndef DEVICEREPORT_LIBRARYMESSAGES_H
#define DEVICEREPORT_LIBRARYMESSAGES_H

// The library's log messages: the report says in its own words what is missing, so they are only
// counted, and shown on standard error when the user wants to see them.
namespace LibraryMessages {

void take(bool areShown);

// How many there were.
int count();

} // namespace LibraryMessages

#endif
