#ifndef TOOLS_INILINT_UNIFIEDDIFF_H
#define TOOLS_INILINT_UNIFIEDDIFF_H

#include <QtCore/QByteArray>

namespace UnifiedDiff {

// What a clean-up changes in a file of this name, as patch reads it; empty when nothing changes.
// Line by line: a clean-up adds none, and drops none but the last.
QByteArray ofCleanUp(const QByteArray& fileName, const QByteArray& before, const QByteArray& after);

} // namespace UnifiedDiff

#endif
