#ifndef TOOLS_INILINT_SHOWNBYTES_H
#define TOOLS_INILINT_SHOWNBYTES_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace ShownBytes {

// Bytes as a line of text: UTF-8 as it is, other bytes and invisible marks by their numbers.
QString shown(const QByteArray& bytes);

} // namespace ShownBytes

#endif
