#ifndef EXAMPLES_INILINT_CLEANUP_H
#define EXAMPLES_INILINT_CLEANUP_H

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QVector>

#include <optional>

// What IniFileManager::cleanUp() does to files.
namespace CleanUp {

// A line that is another one afterwards, or is lost.
struct Change
{
    int line;
    QByteArray before;
    std::optional<QByteArray> after;
};

using Changes = QVector<Change>;

// What a clean-up would make of a file of these bytes, found out with a copy in a folder of its
// own; nothing when there can be no copy.
std::optional<QByteArray> preview(const QByteArray& text);

// The lines that differ. A clean-up adds no lines; at a zero byte it ends.
Changes changes(const QByteArray& before, const QByteArray& after);

} // namespace CleanUp

#endif
