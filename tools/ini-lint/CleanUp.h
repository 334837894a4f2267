#ifndef TOOLS_INILINT_CLEANUP_H
#define TOOLS_INILINT_CLEANUP_H

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QVector>

#include <optional>

// Functions around IniFileManager::cleanUp().
namespace CleanUp {

// A line that a clean-up changes or removes.
struct Change
{
    int line;
    QByteArray before;
    std::optional<QByteArray> after;
};

using Changes = QVector<Change>;

// Returns what a clean-up would make of a file with these bytes, by cleaning a temporary copy;
// nothing if there cannot be a copy.
std::optional<QByteArray> preview(const QByteArray& text);

// Returns the lines that differ. A clean-up adds no lines; it removes those after a zero byte.
Changes changes(const QByteArray& before, const QByteArray& after);

} // namespace CleanUp

#endif
