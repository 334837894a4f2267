#ifndef TOOLS_INILINT_SHOWNBYTES_H
#define TOOLS_INILINT_SHOWNBYTES_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace ShownBytes {

// Returns bytes as one printable line: UTF-8 unchanged, other bytes and invisible characters as
// numbers.
QString shown(const QByteArray& bytes);

} // namespace ShownBytes

#endif
