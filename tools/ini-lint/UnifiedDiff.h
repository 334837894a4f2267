#ifndef TOOLS_INILINT_UNIFIEDDIFF_H
#define TOOLS_INILINT_UNIFIEDDIFF_H

#include <QtCore/QByteArray>

namespace UnifiedDiff {

// Returns the changes that a clean-up makes to a file of this name, in a format that patch accepts;
// empty if nothing changes. Lines are compared one by one: a clean-up adds no lines and removes
// only lines at the end.
QByteArray ofCleanUp(const QByteArray& fileName, const QByteArray& before, const QByteArray& after);

} // namespace UnifiedDiff

#endif
