#include "SectionRules.h"

#include "IniReading.h"
#include "NameRules.h"

#include <QtCore/QHash>

using NameRules::quoted;

namespace {

void checkName(const IniSection& section, Findings& findings)
{
    NameRules::checkSpelling(section.extent.first, section.name, findings);
    if (section.prefix.isEmpty()) {
        findings.append({section.extent.first, QStringLiteral("general-section"),
                         QStringLiteral("[%1] is no group but the top level of the file; the group "
                                        "'General' is written [%General]")
                             .arg(QString::fromLatin1(section.name))});
        return;
    }
    const QString name = section.prefix.chopped(1);
    if (NameRules::isUnreachable(name)) {
        findings.append({section.extent.first, QStringLiteral("unreachable"),
                         QStringLiteral("the keys of %1 cannot be looked up: a part of its name is "
                                        "empty")
                             .arg(quoted(name))});
    } else if (name.contains(QLatin1Char('/'))) {
        findings.append({section.extent.first, QStringLiteral("nested-name"),
                         QStringLiteral("%1 is nested: the group that is listed is %2")
                             .arg(quoted(name), quoted(name.section(QLatin1Char('/'), 0, 0)))});
    }
}

void checkEnd(const IniSection& section, Findings& findings)
{
    if (!section.isClosed) {
        findings.append({section.extent.first, QStringLiteral("section-end"),
                         QStringLiteral("the section has no ']'; its name is read as %1")
                             .arg(quoted(section.name))});
    } else if (!section.behind.isEmpty()) {
        findings.append({section.extent.first, QStringLiteral("section-end"),
                         QStringLiteral("what stands behind the ']' is skipped: %1")
                             .arg(quoted(section.behind))});
    }
}

// Each spelling once, at the first line that has it.
void checkCase(const QVector<IniSection>& sections, Findings& findings)
{
    QHash<QString, const IniSection*> firsts;
    QHash<QString, int> spellings;
    for (const IniSection& section : sections) {
        const IniSection*& first = firsts[section.prefix.toCaseFolded()];
        if (first == nullptr) {
            first = &section;
        } else if (first->prefix != section.prefix && !spellings.contains(section.prefix)) {
            findings.append(
                {section.extent.first, QStringLiteral("case"),
                 QStringLiteral("%1 is another section than %2 in line %3: case counts")
                     .arg(quoted(section.prefix.chopped(1)), quoted(first->prefix.chopped(1)))
                     .arg(first->extent.first)});
        }
        spellings.insert(section.prefix, section.extent.first);
    }
}

void checkStray(const IniStray& stray, Findings& findings)
{
    NameRules::checkExtent(stray.extent, findings);
    if (stray.text.startsWith("\xEF\xBB\xBF")) {
        findings.append({stray.extent.first, QStringLiteral("byte-order-mark"),
                         QStringLiteral("a byte order mark counts as a line without '='; QSettings "
                                        "reports a format error")});
    } else if (stray.text.startsWith('#')) {
        findings.append({stray.extent.first, QStringLiteral("hash-comment"),
                         QStringLiteral("'#' starts no comment; the line is skipped for want of a "
                                        "'=', and QSettings reports a format error: %1")
                             .arg(quoted(stray.text))});
    } else {
        findings.append(
            {stray.extent.first, QStringLiteral("no-equals"),
             QStringLiteral("there is no '='; the line is skipped, and QSettings reports a "
                            "format error: %1")
                 .arg(quoted(stray.text))});
    }
}

} // namespace

void SectionRules::check(const IniReading& reading, Findings& findings)
{
    for (const IniSection& section : reading.sections()) {
        NameRules::checkExtent(section.extent, findings);
        checkName(section, findings);
        checkEnd(section, findings);
    }
    checkCase(reading.sections(), findings);
    for (const IniStray& stray : reading.strays()) {
        checkStray(stray, findings);
    }
}
