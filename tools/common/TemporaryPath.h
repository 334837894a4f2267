#ifndef TOOLS_COMMON_TEMPORARYPATH_H
#define TOOLS_COMMON_TEMPORARYPATH_H

#include <QtCore/QString>

namespace TemporaryPath {

// Returns the template for a temporary file or directory of this program, as for QTemporaryFile
// and QTemporaryDir.
QString pattern();

} // namespace TemporaryPath

#endif
