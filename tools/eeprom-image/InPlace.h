#ifndef TOOLS_EEPROMIMAGE_INPLACE_H
#define TOOLS_EEPROMIMAGE_INPLACE_H

#include "ExitCode.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

// Writes images into something that exists: an EEPROM, a device, or a file of fixed size.
namespace InPlace {

// Returns true for the kernel's file of an EEPROM, which can be written but not replaced.
bool isEeprom(const QString& filePath);

/*
 * Writes the image at address 0, page by page, and reads it back. Bytes after its end are
 * unchanged. An error message says which bytes are new.
 */
ExitCode write(const QString& filePath, const QByteArray& image);

} // namespace InPlace

#endif
