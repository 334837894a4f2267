#ifndef TOOLS_EEPROMIMAGE_INPLACE_H
#define TOOLS_EEPROMIMAGE_INPLACE_H

#include "ExitCode.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

// Images written into something that is there: an EEPROM, a device, or a file of fixed size.
namespace InPlace {

// Whether this is the file that the kernel shows for an EEPROM, into which one can only write.
bool isEeprom(const QString& filePath);

/*
 * Writes the image from address 0 on, page by page, and reads it back. Bytes after its end stay.
 * Complains of what goes wrong, and says which bytes are the new ones.
 */
ExitCode write(const QString& filePath, const QByteArray& image);

} // namespace InPlace

#endif
