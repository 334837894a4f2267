#ifndef EXAMPLES_INILINT_LINTREPORT_H
#define EXAMPLES_INILINT_LINTREPORT_H

#include "CleanUp.h"
#include "Finding.h"

#include "common/BusyDisplay.h"

#include <QtCore/QJsonArray>
#include <QtCore/QString>

// What comes out of the program: lines as soon as they are known, or one JSON object in the end.
class LintReport
{
public:
    explicit LintReport(bool isJson);

    // The file that is being looked at, for people who wait.
    void begin(const QString& file, int number, int count);

    void addFindings(const QString& file, const Findings& findings);
    // isDone: the file has been changed; else it would be.
    void addChanges(const QString& file, const CleanUp::Changes& changes, bool isDone);
    void addTrouble(const QString& file, const QString& trouble);

    void finish();

    bool hasTrouble() const { return m_hasTrouble; }
    bool isEmpty() const { return m_isEmpty; }

private:
    BusyDisplay m_display;
    const bool m_isJson;
    bool m_hasTrouble = false;
    bool m_isEmpty = true; // of findings and changes
    QJsonArray m_files;
};

#endif
