#ifndef TOOLS_INILINT_NAMERULES_H
#define TOOLS_INILINT_NAMERULES_H

#include "FindingCollector.h"

#include <QtCore/QByteArray>

struct Extent;

// Functions that the rules for sections, keys and values share.
namespace NameRules {

// Returns text in quotes, on one line and of limited length. Bytes are decoded as UTF-8 if valid.
QString quoted(const QString& text);
QString quoted(const QByteArray& bytes);

bool isAscii(const QByteArray& bytes);
// Whether bytes are valid UTF-8 with characters beyond ASCII, which other codecs decode
// differently.
bool isUtf8BeyondAscii(const QByteArray& bytes);

// Whether a path cannot be looked up because a part of it is empty: QSettings removes redundant
// slashes from the paths that it looks up, but not from those that it reads.
bool isUnreachable(const QString& path);

// Checks the spelling of a name: characters beyond ASCII, and '%' escapes.
void checkSpelling(const Extent& extent, const QByteArray& name, FindingCollector& findings);

// Reports a line that continues in the next ones.
void checkExtent(const Extent& extent, FindingCollector& findings);
// The same for a line with these bytes that looks like a comment: it is harmless if it includes
// only other comments.
void checkCommentExtent(const Extent& extent, const QByteArray& bytes, FindingCollector& findings);

} // namespace NameRules

#endif
