#include "SarifReport.h"

#include "IniRules.h"

#include "common/CommandLine.h"

#include <QtCore/QDir>
#include <QtCore/QUrl>

namespace {

QJsonObject messageJson(const QString& text)
{
    return {{QStringLiteral("text"), text}};
}

// A relative path remains relative: the reader of the log resolves it where the program ran.
QString uriOf(const QString& file)
{
    const QString path = QString::fromLatin1(QUrl::toPercentEncoding(file, "/"));
    return QDir::isAbsolutePath(file) ? QStringLiteral("file://") + path : path;
}

QJsonObject artifactJson(const QString& file)
{
    return {
        {QStringLiteral("artifactLocation"), QJsonObject{{QStringLiteral("uri"), uriOf(file)}}}};
}

QJsonArray locationJson(QJsonObject physicalLocation)
{
    return {QJsonObject{{QStringLiteral("physicalLocation"), physicalLocation}}};
}

QJsonObject resultJson(const QString& file, const Finding& finding)
{
    QJsonObject place = artifactJson(file);
    place.insert(QStringLiteral("region"),
                 QJsonObject{{QStringLiteral("startLine"), finding.line},
                             {QStringLiteral("startColumn"), finding.column}});
    return {{QStringLiteral("ruleId"), finding.rule},
            {QStringLiteral("level"), Severities::name(finding.severity)},
            {QStringLiteral("message"), messageJson(finding.message)},
            {QStringLiteral("occurrenceCount"), finding.repeats + 1},
            {QStringLiteral("locations"), locationJson(place)}};
}

QJsonArray rulesJson()
{
    QJsonArray result;
    for (const IniRules::Rule& rule : IniRules::all()) {
        result.append(QJsonObject{
            {QStringLiteral("id"), QLatin1String(rule.name)},
            {QStringLiteral("shortDescription"), messageJson(QLatin1String(rule.summary))},
            {QStringLiteral("defaultConfiguration"),
             QJsonObject{{QStringLiteral("level"), Severities::name(rule.severity)}}}});
    }
    return result;
}

} // namespace

void SarifReport::addFindings(const QString& file, const Findings& findings)
{
    for (const Finding& finding : findings) {
        m_results.append(resultJson(file, finding));
    }
}

void SarifReport::addError(const QString& file, const QString& error)
{
    m_notifications.append(
        QJsonObject{{QStringLiteral("level"), QStringLiteral("error")},
                    {QStringLiteral("message"), messageJson(error)},
                    {QStringLiteral("locations"), locationJson(artifactJson(file))}});
}

QJsonObject SarifReport::document() const
{
    const QJsonObject driver{{QStringLiteral("name"), CommandLine::programName()},
                             {QStringLiteral("rules"), rulesJson()}};
    const QJsonObject invocation{{QStringLiteral("executionSuccessful"), m_notifications.isEmpty()},
                                 {QStringLiteral("toolExecutionNotifications"), m_notifications}};
    const QJsonObject run{{QStringLiteral("tool"), QJsonObject{{QStringLiteral("driver"), driver}}},
                          {QStringLiteral("columnKind"), QStringLiteral("unicodeCodePoints")},
                          {QStringLiteral("invocations"), QJsonArray{invocation}},
                          {QStringLiteral("results"), m_results}};
    return {{QStringLiteral("$schema"),
             QStringLiteral("https://json.schemastore.org/sarif-2.1.0.json")},
            {QStringLiteral("version"), QStringLiteral("2.1.0")},
            {QStringLiteral("runs"), QJsonArray{run}}};
}
