#ifndef TOOLS_DEVICEREPORT_DEVICEREPORT_H
#define TOOLS_DEVICEREPORT_DEVICEREPORT_H

#include "Report.h"

#include <QtCore/QString>

// Asks the device for its identity; changes nothing on it. An empty eepromPath or hardwareId was
// not given.
namespace DeviceReport {

Report make(const QString& eepromPath, const QString& hardwareId);

} // namespace DeviceReport

#endif
