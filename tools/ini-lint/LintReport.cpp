#include "LintReport.h"

#include "UnifiedDiff.h"

#include "common/CommandLine.h"

#include <QtCore/QFile>
#include <QtCore/QJsonDocument>

namespace {

// Bold red, magenta or cyan, as in compiler messages.
QString shownSeverity(Severity severity)
{
    if (!CommandLine::isColored()) {
        return Severities::name(severity);
    }
    const int color = severity == Severity::Error ? 31 : severity == Severity::Warning ? 35 : 36;
    return QStringLiteral("\x1b[1;%1m%2\x1b[0m")
        .arg(QString::number(color), Severities::name(severity));
}

// The format of compiler messages.
QString compilerLine(const QString& file, const Finding& finding)
{
    const QString repeats = finding.repeats > 0
                                ? QStringLiteral(" (and %1 more in this file)").arg(finding.repeats)
                                : QString();
    return QStringLiteral("%1:%2:%3: %4: %5%6 [%7]")
        .arg(CommandLine::printable(file), QString::number(finding.line),
             QString::number(finding.column), shownSeverity(finding.severity), finding.message,
             repeats, finding.rule);
}

void printJson(const QJsonObject& document)
{
    CommandLine::print(QString::fromUtf8(QJsonDocument(document).toJson()).trimmed());
}

} // namespace

LintReport::LintReport(ReportFormat format) : m_format(format)
{
    m_display.emplace(QString());
}

void LintReport::begin(const QString& file, int number, int count)
{
    m_display->setActivity(QStringLiteral("file %1 of %2: %3")
                               .arg(number)
                               .arg(count)
                               .arg(CommandLine::printable(file)));
}

void LintReport::addFindings(const QString& file, const Findings& findings)
{
    m_isEmpty = m_isEmpty && findings.isEmpty();
    m_json.addFindings(file, findings);
    m_sarif.addFindings(file, findings);
    if (m_format == ReportFormat::Text) {
        for (const Finding& finding : findings) {
            m_display->print(compilerLine(file, finding));
        }
    }
}

void LintReport::addChanges(const QString& file, const QByteArray& before, const QByteArray& after,
                            bool isDone)
{
    m_isEmpty = m_isEmpty && before == after;
    m_json.addChanges(file, CleanUp::changes(before, after), isDone);
    m_diff += UnifiedDiff::ofCleanUp(QFile::encodeName(file), before, after);
}

void LintReport::addError(const QString& file, const QString& error)
{
    m_hasError = true;
    m_json.addError(file, error);
    m_sarif.addError(file, error);
    m_display->printError(QStringLiteral("%1: %2").arg(CommandLine::printable(file), error));
}

void LintReport::finish()
{
    m_display.reset();
    switch (m_format) {
    case ReportFormat::Text:
        // The exact bytes of the files, so that patch can apply the diff.
        CommandLine::write(m_diff);
        break;
    case ReportFormat::Json:
        printJson(m_json.document());
        break;
    case ReportFormat::Sarif:
        printJson(m_sarif.document());
        break;
    }
}
