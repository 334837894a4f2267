#ifndef TOOLS_EEPROMIMAGE_VERIFYCOMMAND_H
#define TOOLS_EEPROMIMAGE_VERIFYCOMMAND_H

#include "ExitCode.h"

#include <QtCore/QStringList>

// Reports whether an image is valid, or what is wrong with it and where; see the help.
ExitCode verifyImage(const QStringList& arguments);

#endif
