#ifndef TOOLS_INILINT_IGNORELIST_H
#define TOOLS_INILINT_IGNORELIST_H

#include "Finding.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

/*
 * The rules to ignore in files that match a pattern, read from a file with lines "RULE PATTERN".
 * '*' means every rule. Empty lines and lines that begin with '#' are skipped.
 */
class IgnoreList
{
public:
    // Adds the entries of a list file. Returns an error message, or an empty string on success.
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
