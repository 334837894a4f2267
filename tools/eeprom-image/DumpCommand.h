#ifndef TOOLS_EEPROMIMAGE_DUMPCOMMAND_H
#define TOOLS_EEPROMIMAGE_DUMPCOMMAND_H

#include "ExitCode.h"

#include <QtCore/QStringList>

// Prints the bytes of an image and their meaning, even if it is damaged; see the help.
ExitCode dumpImage(const QStringList& arguments);

#endif
