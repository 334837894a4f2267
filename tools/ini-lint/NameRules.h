#ifndef TOOLS_INILINT_NAMERULES_H
#define TOOLS_INILINT_NAMERULES_H

#include "FindingCollector.h"

#include <QtCore/QByteArray>

struct Extent;

// What the rules of sections, keys and values share.
namespace NameRules {

// Text in quotes, on one line and of limited length; bytes are shown as UTF-8 where they are.
QString quoted(const QString& text);
QString quoted(const QByteArray& bytes);

bool isAscii(const QByteArray& bytes);
// Whether bytes are UTF-8 that other codecs read as something else.
bool isUtf8BeyondAscii(const QByteArray& bytes);

// Whether an empty part keeps a path from being looked up: QSettings takes needless slashes out of
// what it is asked for, and not out of what it reads.
bool isUnreachable(const QString& path);

// Of a name as it is written: characters beyond ASCII, and escapes that QSettings would not write.
void checkSpelling(const Extent& extent, const QByteArray& name, FindingCollector& findings);

// Of a line that goes on in the next ones.
void checkExtent(const Extent& extent, FindingCollector& findings);
// The same of a line that people take for a comment, whose bytes these are: it does no harm when it
// goes on in nothing but comments.
void checkCommentExtent(const Extent& extent, const QByteArray& bytes, FindingCollector& findings);

} // namespace NameRules

#endif
