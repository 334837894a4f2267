#include "StrayRules.h"

#include "IniReading.h"
#include "NameRules.h"

using NameRules::quoted;

namespace {

void checkStray(const IniStray& stray, FindingCollector& findings)
{
    const QByteArray text = withoutByteOrderMark(stray.extent, stray.text);
    if (text != stray.text) {
        findings.add(stray.extent, Severity::Note, "byte-order-mark",
                     QStringLiteral("a byte order mark counts as a line without '='; QSettings "
                                    "reports a format error"));
    }
    if (text.isEmpty() || stray.isHashComment()) {
        NameRules::checkCommentExtent(stray.extent, text, findings);
        return;
    }
    NameRules::checkExtent(stray.extent, findings);
    findings.add(stray.extent, Severity::Error, "no-equals",
                 QStringLiteral("there is no '='; the line is skipped, and QSettings reports a "
                                "format error: %1")
                     .arg(quoted(stray.text)));
}

} // namespace

void StrayRules::check(const IniReading& reading, FindingCollector& findings)
{
    for (const IniStray& stray : reading.strays()) {
        checkStray(stray, findings);
    }
}
