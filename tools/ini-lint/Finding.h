#ifndef TOOLS_INILINT_FINDING_H
#define TOOLS_INILINT_FINDING_H

#include "Severity.h"

#include <QtCore/QString>
#include <QtCore/QVector>

// A place in a file that is read otherwise than it looks.
struct Finding
{
    int line; // from 1, as the column
    int column;
    int firstLine; // of the key or section that the place belongs to
    Severity severity;
    QString rule;
    QString message;
    int repeats = 0; // how many findings of the same rule and severity this one stands for
};

using Findings = QVector<Finding>;

#endif
