#ifndef TOOLS_COMMON_TEMPORARYPATH_H
#define TOOLS_COMMON_TEMPORARYPATH_H

#include <QtCore/QString>

namespace TemporaryPath {

// The path of a temporary file or directory of this program, whose XXXXXX QTemporaryFile and
// QTemporaryDir replace.
QString pattern();

} // namespace TemporaryPath

#endif
