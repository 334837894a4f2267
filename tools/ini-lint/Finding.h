#ifndef TOOLS_INILINT_FINDING_H
#define TOOLS_INILINT_FINDING_H

#include "Severity.h"

#include <QtCore/QString>
#include <QtCore/QVector>

// A place in a file that QSettings reads differently from what it seems to say.
struct Finding
{
    int line; // from 1, like column
    int column;
    int firstLine; // of the key or section at that place
    Severity severity;
    QString rule;
    QString message;
    int repeats = 0; // the number of omitted findings of the same rule and severity
};

using Findings = QVector<Finding>;

#endif
