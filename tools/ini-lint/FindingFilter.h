#ifndef TOOLS_INILINT_FINDINGFILTER_H
#define TOOLS_INILINT_FINDINGFILTER_H

#include "Finding.h"
#include "IgnoreList.h"

#include <QtCore/QStringList>

// Selects the findings that a run prints.
struct FindingFilter
{
    Severity level = Severity::Warning; // the lowest
    bool areRepeatsShown = false;
    QStringList ignoredRules;
    IgnoreList ignoreList;

    Findings apply(const QString& filePath, const Findings& findings) const;
};

#endif
