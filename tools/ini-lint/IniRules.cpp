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
                     QStringLiteral("the file is UTF-16, which QSettings does not read"));
    }
}

} // namespace

const QVector<IniRules::Rule>& IniRules::all()
{
    static const QVector<Rule> rules = {
        {"at-sign", Severity::Error, "a value that begins with '@' is read as another type"},
        {"boolean-word", Severity::Warning, "a word such as 'off' that is true as a boolean"},
        {"byte-order-mark", Severity::Error, "a byte order mark is a part of a name, or a line"},
        {"case", Severity::Warning, "names that differ in case alone are different names"},
        {"comma-list", Severity::Error, "a comma outside of quotes makes a list of the value"},
        {"duplicate-key", Severity::Error, "a key that is given again"},
        {"encoding", Severity::Error, "bytes that are not those of the codec"},
        {"escape", Severity::Error, "a backslash that changes the value"},
        {"general-section", Severity::Warning, "[General] is the file's top level, not a group"},
        {"hash-comment", Severity::Warning, "'#' after a value, or before a key, is a part of it"},
        {"ignore-comment", Severity::Warning, "a comment for ini-lint that it does not understand"},
        {"large-number", Severity::Warning, "a number beyond 32 bits"},
        {"literal-escape", Severity::Warning, "a doubled backslash, or one before a quote"},
        {"multi-line", Severity::Error, "a quote or a backslash that includes the next line"},
        {"name-escape", Severity::Error, "a '%' that changes a name"},
        {"nested-name", Severity::Error, "a '/' or '\\' in a name nests it"},
        {"no-equals", Severity::Error, "a line without '=' is skipped"},
        {"quotes", Severity::Error, "quotes that vanish, or that stay"},
        {"read-order", Severity::Error, "what is read depends on what was read before"},
        {"section-end", Severity::Error, "a section's ']' is missing, or not the end of its line"},
        {"semicolon", Severity::Error, "a semicolon outside of quotes ends the value"},
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
