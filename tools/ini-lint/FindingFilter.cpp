#include "FindingFilter.h"

#include <algorithm>

namespace {

// Adds a finding, or counts it as a repeat of the first of its rule and severity.
void addOnce(const Finding& finding, Findings& result)
{
    const auto first = std::find_if(result.begin(), result.end(), [&finding](const Finding& known) {
        return known.rule == finding.rule && known.severity == finding.severity;
    });
    if (first == result.end()) {
        result.append(finding);
    } else {
        ++first->repeats;
    }
}

} // namespace

Findings FindingFilter::apply(const QString& filePath, const Findings& findings) const
{
    Findings result;
    for (const Finding& finding : findings) {
        if (finding.severity < level || ignoredRules.contains(finding.rule) ||
            ignoreList.isIgnored(filePath, finding.rule)) {
            continue;
        }
        if (areRepeatsShown) {
            result.append(finding);
        } else {
            addOnce(finding, result);
        }
    }
    return result;
}
