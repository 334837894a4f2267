#ifndef TOOLS_EEPROMIMAGE_CREATECOMMAND_H
#define TOOLS_EEPROMIMAGE_CREATECOMMAND_H

#include "ExitCode.h"

#include <QtCore/QStringList>

// Writes an image; see the help.
ExitCode createImage(const QStringList& arguments);

#endif
