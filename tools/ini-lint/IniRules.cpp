#include "IniRules.h"

#include "KeyRules.h"
#include "SectionRules.h"
#include "ValueRules.h"

#include "IniReading.h"

#include <algorithm>

const QVector<IniRules::Rule>& IniRules::all()
{
    static const QVector<Rule> rules = {
        {"at-sign", "a value that begins with '@' is read as another type"},
        {"boolean-word", "a word such as 'off' that is true as a boolean"},
        {"byte-order-mark", "a byte order mark counts as a line, or as a part of a name"},
        {"case", "names that differ in case alone are different names"},
        {"comma-list", "a comma outside of quotes makes a list of the value"},
        {"duplicate-key", "a key that is given again"},
        {"encoding", "bytes that are not those of the codec"},
        {"escape", "a backslash that changes the value"},
        {"general-section", "[General] is the file's top level, not a group"},
        {"hash-comment", "'#' starts no comment"},
        {"large-number", "a number beyond 32 bits"},
        {"multi-line", "a quote or a backslash that takes in the next line"},
        {"name-escape", "a '%' that changes a name"},
        {"nested-name", "a '/' or '\\' in a name nests it"},
        {"no-equals", "a line without '=' is skipped"},
        {"quotes", "quotes that vanish, or that stay"},
        {"section-end", "a section's ']' is missing, or not the end of its line"},
        {"semicolon", "a semicolon outside of quotes ends the value"},
        {"unreachable", "a name with an empty part cannot be looked up"},
    };
    return rules;
}

bool IniRules::contains(const QString& rule)
{
    return std::any_of(all().cbegin(), all().cend(), [&rule](const Rule& candidate) {
        return rule == QLatin1String(candidate.name);
    });
}

Findings IniRules::check(const QByteArray& text, const QTextCodec* codec,
                         const QStringList& ignoredRules)
{
    const IniReading reading(text, codec);
    Findings findings;
    SectionRules::check(reading, findings);
    KeyRules::check(reading, findings);
    ValueRules::check(reading, findings);

    findings.erase(std::remove_if(findings.begin(), findings.end(),
                                  [&ignoredRules](const Finding& finding) {
                                      return ignoredRules.contains(finding.rule);
                                  }),
                   findings.end());
    std::stable_sort(
        findings.begin(), findings.end(),
        [](const Finding& left, const Finding& right) { return left.line < right.line; });
    return findings;
}
