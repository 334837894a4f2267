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
        // A match is written into the expression, const or not: threads that share the filter each
        // need one of their own.
        const QRegExp ownRegExp(regExp); // NOLINT(performance-unnecessary-copy-initialization)
        if (ownRegExp.exactMatch(fileName)) {
            return true;
        }
    }
    return false;
}
