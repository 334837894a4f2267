#ifndef TOOLS_DEVICEREPORT_DEVICEREPORT_H
#define TOOLS_DEVICEREPORT_DEVICEREPORT_H

#include "Report.h"

#include <QtCore/QString>

// Queries the identity of the device; changes nothing. An empty eepromPath or hardwareId means that
// none was given.
namespace DeviceReport {

Report make(const QString& eepromPath, const QString& hardwareId);

} // namespace DeviceReport

#endif
