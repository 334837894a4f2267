#ifndef TOOLS_INILINT_JSONREPORT_H
#define TOOLS_INILINT_JSONREPORT_H

#include "CleanUp.h"
#include "Finding.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QString>

// Formats the results as one JSON object.
class JsonReport
{
public:
    void addFindings(const QString& file, const Findings& findings);
    void addChanges(const QString& file, const CleanUp::Changes& changes, bool isDone);
    void addError(const QString& file, const QString& error);

    QJsonObject document() const;

private:
    QJsonArray m_files;
};

#endif
