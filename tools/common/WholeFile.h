#ifndef TOOLS_COMMON_WHOLEFILE_H
#define TOOLS_COMMON_WHOLEFILE_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace WholeFile {

// Writes a file, atomically and durably. If it replaces a file, owner, group and mode are kept; a
// message says so if the system does not allow that. Refuses to replace anything but a regular
// file. Returns an error message, or an empty string on success.
QString replace(const QString& path, const QByteArray& bytes);

// Whether path means standard output: "-", "/dev/stdout" and the like.
bool isStandardOutput(const QString& path);

} // namespace WholeFile

#endif
