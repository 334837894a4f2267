#ifndef TOOLS_EEPROMIMAGE_EXTRACTCOMMAND_H
#define TOOLS_EEPROMIMAGE_EXTRACTCOMMAND_H

#include "ExitCode.h"

#include <QtCore/QStringList>

// Prints the INI text of a valid image, byte for byte; see the help.
ExitCode extractText(const QStringList& arguments);

#endif
