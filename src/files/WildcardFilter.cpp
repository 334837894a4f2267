#include "WildcardFilter.h"

#include "common/Log.h"

WildcardFilter::WildcardFilter(const QStringList& patterns, QDir::Filters filters)
{
    const Qt::CaseSensitivity caseSensitivity =
        filters.testFlag(QDir::CaseSensitive) ? Qt::CaseSensitive : Qt::CaseInsensitive;
    m_regExps.reserve(patterns.size());
    for (const QString& pattern : patterns) {
        m_regExps.append(QRegExp(pattern, caseSensitivity, QRegExp::Wildcard));
    }
}

WildcardFilter::~WildcardFilter() = default;

bool WildcardFilter::matchesFilters(const QString& fileName) const
{
    if (fileName.isEmpty()) {
        MISCTOOLS_LOG(WildcardFilter).warning()
            << "Can't match filter to empty file name:" << fileName;
        return false;
    }
    for (const QRegExp& regExp : m_regExps) {
        // exactMatch() is const, but modifies the expression: threads that share the filter each
        // need their own copy.
        const QRegExp ownRegExp(regExp); // NOLINT(performance-unnecessary-copy-initialization)
        if (ownRegExp.exactMatch(fileName)) {
            return true;
        }
    }
    return false;
}
