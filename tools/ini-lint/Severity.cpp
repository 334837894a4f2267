#include "Severity.h"

QString Severities::name(Severity severity)
{
    return names().at(static_cast<int>(severity));
}

QStringList Severities::names()
{
    return {QStringLiteral("note"), QStringLiteral("warning"), QStringLiteral("error")};
}

std::optional<Severity> Severities::fromName(const QString& name)
{
    const int index = names().indexOf(name);
    return index < 0 ? std::nullopt : std::make_optional(static_cast<Severity>(index));
}
