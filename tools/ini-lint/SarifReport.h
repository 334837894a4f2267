#ifndef TOOLS_INILINT_SARIFREPORT_H
#define TOOLS_INILINT_SARIFREPORT_H

#include "Finding.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QString>

// Formats the results as a SARIF 2.1.0 log, which code hosts and editors read.
class SarifReport
{
public:
    void addFindings(const QString& file, const Findings& findings);
    void addError(const QString& file, const QString& error);

    QJsonObject document() const;

private:
    QJsonArray m_results;
    QJsonArray m_notifications;
};

#endif
