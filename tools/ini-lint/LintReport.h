#ifndef TOOLS_INILINT_LINTREPORT_H
#define TOOLS_INILINT_LINTREPORT_H

#include "Finding.h"
#include "JsonReport.h"
#include "SarifReport.h"

#include "common/BusyDisplay.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

enum class ReportFormat
{
    Text,
    Json,
    Sarif
};

// Prints the results: findings immediately, everything else at the end.
class LintReport
{
public:
    explicit LintReport(ReportFormat format);

    // Shows which file is being checked.
    void begin(const QString& file, int number, int count);

    void addFindings(const QString& file, const Findings& findings);
    // isDone: the file has been changed; otherwise this is a dry run.
    void addChanges(const QString& file, const QByteArray& before, const QByteArray& after,
                    bool isDone);
    void addError(const QString& file, const QString& error);

    void finish();

    bool hasError() const { return m_hasError; }
    bool isEmpty() const { return m_isEmpty; }

private:
    std::optional<BusyDisplay> m_display; // until finish()
    const ReportFormat m_format;
    bool m_hasError = false;
    bool m_isEmpty = true; // no findings and no changes
    JsonReport m_json;
    SarifReport m_sarif;
    QByteArray m_diff;
};

#endif
