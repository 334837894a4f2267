#ifndef EXAMPLES_WHOLEFILE_H
#define EXAMPLES_WHOLEFILE_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace WholeFile {

// Puts a file of these bytes at path, in the place of one that is there: all of it, or none. Gives
// what went wrong, an empty text if nothing did.
QString replace(const QString& path, const QByteArray& bytes);

} // namespace WholeFile

#endif
