#include "SectionRules.h"

#include "IniReading.h"
#include "NameRules.h"

#include <QtCore/QHash>

using NameRules::quoted;

namespace {

void checkName(const IniSection& section, FindingCollector& findings)
{
    NameRules::checkSpelling(section.extent, section.name, findings);
    if (section.prefix.isEmpty()) {
        findings.add(section.extent, Severity::Warning, "general-section",
                     QStringLiteral("[%1] is not a group but the top level of the file; the group "
                                    "'General' is spelled [%General]")
                         .arg(QString::fromLatin1(section.name)));
        return;
    }
    const QString name = section.prefix.chopped(1);
    if (section.name.compare("%general", Qt::CaseInsensitive) == 0) {
        findings.add(
            section.extent, Severity::Warning, "name-escape",
            QStringLiteral("%1 is read as %2: '%' distinguishes it from the file's top level")
                .arg(quoted(section.name), quoted(name)));
    }
    if (NameRules::isUnreachable(name)) {
        findings.add(section.extent, Severity::Error, "unreachable",
                     QStringLiteral("the keys of %1 cannot be looked up: a part of its name is "
                                    "empty")
                         .arg(quoted(name)));
    } else if (name.contains(QLatin1Char('/'))) {
        // Looking up the spelling in the file works with '/', but not with '\'.
        const bool isOther = section.name.contains('\\');
        findings.add(section.extent, isOther ? Severity::Error : Severity::Warning, "nested-name",
                     QStringLiteral("%1 is nested: it is listed as the group %2")
                         .arg(quoted(name), quoted(name.section(QLatin1Char('/'), 0, 0))));
    }
}

void checkEnd(const IniSection& section, FindingCollector& findings)
{
    if (!section.isClosed) {
        findings.add(section.extent, Severity::Error, "section-end",
                     QStringLiteral("the section has no ']'; its name is read as %1")
                         .arg(quoted(section.name)));
    } else if (!section.trailing.isEmpty() && !section.trailing.startsWith('#')) {
        findings.add(
            section.extent, Severity::Error, "section-end",
            QStringLiteral("what follows the ']' is skipped: %1").arg(quoted(section.trailing)));
    }
}

// Reports each spelling once, at its first line.
void checkCase(const QVector<IniSection>& sections, FindingCollector& findings)
{
    QHash<QString, const IniSection*> firsts;
    QHash<QString, int> spellings;
    for (const IniSection& section : sections) {
        const IniSection*& first = firsts[section.prefix.toCaseFolded()];
        if (first == nullptr) {
            first = &section;
        } else if (first->prefix != section.prefix && !spellings.contains(section.prefix)) {
            findings.add(
                section.extent, Severity::Warning, "case",
                QStringLiteral("%1 and %2 in line %3 are different sections: case matters")
                    .arg(quoted(section.prefix.chopped(1)), quoted(first->prefix.chopped(1)))
                    .arg(first->extent.first));
        }
        spellings.insert(section.prefix, section.extent.first);
    }
}

} // namespace

void SectionRules::check(const IniReading& reading, FindingCollector& findings)
{
    for (const IniSection& section : reading.sections()) {
        NameRules::checkExtent(section.extent, findings);
        checkName(section, findings);
        checkEnd(section, findings);
    }
    checkCase(reading.sections(), findings);
}
