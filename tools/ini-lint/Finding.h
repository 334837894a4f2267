#ifndef EXAMPLES_INILINT_FINDING_H
#define EXAMPLES_INILINT_FINDING_H

#include <QtCore/QString>
#include <QtCore/QVector>

// A place in a file that is read otherwise than it looks.
struct Finding
{
    int line;
    QString rule;
    QString message;
};

inline bool operator==(const Finding& left, const Finding& right)
{
    return left.line == right.line && left.rule == right.rule && left.message == right.message;
}

using Findings = QVector<Finding>;

#endif
