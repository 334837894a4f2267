#ifndef TOOLS_INILINT_SEVERITY_H
#define TOOLS_INILINT_SEVERITY_H

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

enum class Severity
{
    Note,    // reads as it looks, but there is more to know
    Warning, // may surprise
    Error    // another value is read than the one that is written, or none
};

namespace Severities {

// As users write it: "note", "warning", "error".
QString name(Severity severity);
QStringList names();
std::optional<Severity> fromName(const QString& name);

} // namespace Severities

#endif
