#ifndef TOOLS_INILINT_IGNORECOMMENTS_H
#define TOOLS_INILINT_IGNORECOMMENTS_H

#include "FindingCollector.h"

#include <QtCore/QSet>
#include <QtCore/QStringList>

/*
 * The comments in a file that suppress findings: "; ini-lint: ignore RULE..." those of the next
 * line that is neither empty nor a comment, "; ini-lint: ignore-file RULE..." those of the whole
 * file.
 */
class IgnoreComments
{
public:
    // Adds a finding for each comment that cannot be parsed.
    IgnoreComments(const QByteArray& text, FindingCollector& findings);

    // Returns the findings that are not ignored.
    Findings apply(const Findings& findings) const;

private:
    struct Rules
    {
        int line; // 0: the entire file
        QStringList names;
    };

    void addComment(const QByteArray& comment, const Extent& extent, FindingCollector& findings);
    bool isIgnored(const Finding& finding) const;

    QVector<Rules> m_rules;
    QStringList m_pendingRules; // for the next line that is not a comment
};

#endif
