#ifndef TOOLS_EEPROMIMAGE_SHOWCOMMAND_H
#define TOOLS_EEPROMIMAGE_SHOWCOMMAND_H

#include "ExitCode.h"

#include <QtCore/QStringList>

// Prints the record of an image; see the help.
ExitCode showImage(const QStringList& arguments);

#endif
