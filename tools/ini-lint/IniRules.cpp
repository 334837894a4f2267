#include "IniRules.h"

#include "FindingCollector.h"
#include "IgnoreComments.h"
#include "IniReading.h"
#include "KeyRules.h"
#include "OrderRules.h"
#include "SectionRules.h"
#include "StrayRules.h"
#include "ValueRules.h"

#include <algorithm>

namespace {

// QSettings parses only encodings that contain ASCII, which UTF-16 does not.
void checkFile(const QByteArray& text, FindingCollector& findings)
{
    if (text.startsWith("\xFF\xFE") || text.startsWith("\xFE\xFF")) {
        const Extent extent = {0, 1, 1, false};
        findings.add(extent, Severity::Error, "byte-order-mark",
                     QStringLiteral("the file is UTF-16, which QSettings cannot read"));
    }
}

} // namespace

const QVector<IniRules::Rule>& IniRules::all()
{
    static const QVector<Rule> rules = {
        {"at-sign", Severity::Error, "a value that begins with '@' is read as another type"},
        {"boolean-word", Severity::Warning, "a word such as 'off' is true as a boolean"},
        {"byte-order-mark", Severity::Error,
         "a byte order mark is read as part of a name or as a line"},
        {"case", Severity::Warning, "names that differ only in case are different names"},
        {"comma-list", Severity::Error, "a comma outside quotes makes the value a list"},
        {"duplicate-key", Severity::Error, "a key occurs more than once in a section"},
        {"encoding", Severity::Error, "bytes that are not in the encoding of the codec"},
        {"escape", Severity::Error, "a backslash that changes the value"},
        {"general-section", Severity::Warning, "[General] is the file's top level, not a group"},
        {"hash-comment", Severity::Warning, "'#' after a value or before a key is part of it"},
        {"ignore-comment", Severity::Warning, "a comment for ini-lint that cannot be parsed"},
        {"large-number", Severity::Warning, "a number that exceeds 32 bits"},
        {"literal-escape", Severity::Warning, "a doubled backslash, or a backslash before a quote"},
        {"multi-line", Severity::Error, "a quote or a backslash that includes the next line"},
        {"name-escape", Severity::Error, "a '%' that changes a name"},
        {"nested-name", Severity::Error, "a '/' or '\\' in a name makes it nested"},
        {"no-equals", Severity::Error, "a line without '=' is skipped"},
        {"quotes", Severity::Error, "quotes that are removed, or that are kept"},
        {"read-order", Severity::Error, "the value depends on what was read before"},
        {"section-end", Severity::Error,
         "a section's ']' is missing or is not at the end of its line"},
        {"semicolon", Severity::Error, "a semicolon outside quotes ends the value"},
        {"unreachable", Severity::Error, "a name with an empty part cannot be looked up"},
    };
    return rules;
}

bool IniRules::contains(const QString& rule)
{
    return std::any_of(all().cbegin(), all().cend(), [&rule](const Rule& candidate) {
        return rule == QLatin1String(candidate.name);
    });
}

Findings IniRules::check(const QByteArray& text, const QTextCodec* codec)
{
    const IniReading reading(text, codec);
    FindingCollector findings(text);
    checkFile(text, findings);
    SectionRules::check(reading, findings);
    StrayRules::check(reading, findings);
    KeyRules::check(reading, findings);
    ValueRules::check(reading, findings);
    OrderRules::check(reading, findings);
    return IgnoreComments(text, findings).apply(findings.sorted());
}
