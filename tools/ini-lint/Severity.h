#ifndef TOOLS_INILINT_SEVERITY_H
#define TOOLS_INILINT_SEVERITY_H

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

enum class Severity
{
    Note,    // QSettings reads what the file seems to say, but there is more to know
    Warning, // what QSettings reads may be unexpected
    Error    // QSettings reads a different value, or none
};

namespace Severities {

// The names on the command line: "note", "warning", "error".
QString name(Severity severity);
QStringList names();
std::optional<Severity> fromName(const QString& name);

} // namespace Severities

#endif
