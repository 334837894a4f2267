#include "JsonReport.h"

#include "ShownBytes.h"

namespace {

const QString fileMember = QStringLiteral("file");

QJsonObject toJson(const Finding& finding)
{
    return {{QStringLiteral("line"), finding.line},
            {QStringLiteral("column"), finding.column},
            {QStringLiteral("severity"), Severities::name(finding.severity)},
            {QStringLiteral("rule"), finding.rule},
            {QStringLiteral("message"), finding.message},
            {QStringLiteral("repeats"), finding.repeats}};
}

QJsonObject toJson(const CleanUp::Change& change)
{
    return {{QStringLiteral("line"), change.line},
            {QStringLiteral("before"), ShownBytes::shown(change.before)},
            {QStringLiteral("after"),
             change.after ? QJsonValue(ShownBytes::shown(*change.after)) : QJsonValue()}};
}

template <typename Items>
QJsonArray toJsonArray(const Items& items)
{
    QJsonArray result;
    for (const auto& item : items) {
        result.append(toJson(item));
    }
    return result;
}

} // namespace

void JsonReport::addFindings(const QString& file, const Findings& findings)
{
    m_files.append(
        QJsonObject{{fileMember, file}, {QStringLiteral("findings"), toJsonArray(findings)}});
}

void JsonReport::addChanges(const QString& file, const CleanUp::Changes& changes, bool isDone)
{
    m_files.append(QJsonObject{{fileMember, file},
                               {QStringLiteral("changes"), toJsonArray(changes)},
                               {QStringLiteral("done"), isDone}});
}

void JsonReport::addError(const QString& file, const QString& error)
{
    m_files.append(QJsonObject{{fileMember, file}, {QStringLiteral("error"), error}});
}

QJsonObject JsonReport::document() const
{
    return {{QStringLiteral("files"), m_files}};
}
