#ifndef TOOLS_INILINT_FINDINGCOLLECTOR_H
#define TOOLS_INILINT_FINDINGCOLLECTOR_H

#include "Finding.h"
#include "IniLines.h"

struct Extent;

// Collects the findings of all rules and converts positions in the text to lines and columns.
class FindingCollector
{
public:
    explicit FindingCollector(const QByteArray& text);

    // Adds a finding at the beginning of extent, or at a position in it.
    void add(const Extent& extent, Severity severity, const char* rule, const QString& message);
    void addAt(int position, const Extent& extent, Severity severity, const char* rule,
               const QString& message);

    // Returns the findings, sorted by line and column.
    Findings sorted() const;

private:
    // Returns the column in characters if the text is UTF-8, otherwise in bytes.
    int columnAt(int position) const;

    const QByteArray m_text;
    const LineNumbers m_numbers;
    const bool m_isUtf8;
    Findings m_findings;
};

#endif
