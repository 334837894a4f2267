#ifndef TOOLS_INILINT_IGNORELIST_H
#define TOOLS_INILINT_IGNORELIST_H

#include "Finding.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

/*
 * The rules that say nothing of files of a pattern, from a file with a line "RULE PATTERN" for
 * each; '*' means every rule. Empty lines, and those that begin with '#', are skipped.
 */
class IgnoreList
{
public:
    // Adds what a list file says; returns what is wrong with it, an empty text if nothing is.
    QString read(const QString& listPath);

    bool isIgnored(const QString& filePath, const QString& rule) const;

private:
    struct Entry
    {
        QString rule;
        QRegularExpression pattern;
    };

    QString addLine(const QString& line);

    QVector<Entry> m_entries;
};

#endif
