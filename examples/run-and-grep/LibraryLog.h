#ifndef EXAMPLES_LIBRARYLOG_H
#define EXAMPLES_LIBRARYLOG_H

#include <QtCore/QString>

// The log lines of the library and of Qt. This program says in its own words what they mean; as
// they are they come to the terminal only on request.
namespace LibraryLog {

// Takes the log lines from here on; isVerbose passes them on to standard error.
void install(bool isVerbose);

// The last line.
QString lastText();

} // namespace LibraryLog

#endif
