#ifndef TOOLS_COMMON_WHOLEFILE_H
#define TOOLS_COMMON_WHOLEFILE_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace WholeFile {

// Puts a file of these bytes at path, in place of one that is there: all of it, or none, and so
// that a power cut afterwards does not undo it. Owner, group and mode of the old one stay; where
// the system does not allow it, the program says so. Whatever is there and is no regular file is
// refused. Returns what went wrong, an empty text if nothing did.
QString replace(const QString& path, const QByteArray& bytes);

// Whether path stands for standard output: "-", "/dev/stdout" and the like.
bool isStandardOutput(const QString& path);

} // namespace WholeFile

#endif
