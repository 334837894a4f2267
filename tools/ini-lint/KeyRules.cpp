#include "KeyRules.h"

#include "IniReading.h"
#include "NameRules.h"

#include <QtCore/QHash>

using NameRules::quoted;

namespace {

const QChar slash = QLatin1Char('/');

void checkPath(const IniEntry& entry, FindingCollector& findings)
{
    if (NameRules::isUnreachable(entry.key)) {
        findings.add(entry.extent, Severity::Error, "unreachable",
                     entry.key.isEmpty()
                         ? QStringLiteral("there is no key before the '='; the value cannot be "
                                          "looked up")
                         : QStringLiteral("the key %1 cannot be looked up: a part of its name "
                                          "is empty")
                               .arg(quoted(entry.key)));
    } else if (entry.key.contains(slash)) {
        const QString path = entry.path();
        // Looking up the spelling in the file works with '/', but not with '\'.
        const bool isOther = entry.name.contains('\\');
        findings.add(entry.extent, isOther ? Severity::Error : Severity::Warning, "nested-name",
                     QStringLiteral("%1 is nested: it is read as the key %2 in the group %3")
                         .arg(quoted(entry.key), quoted(path.section(slash, -1)),
                              quoted(path.section(slash, 0, -2))));
    }
}

void checkName(const IniEntry& entry, FindingCollector& findings)
{
    if (entry.isCommentedOut()) {
        findings.add(entry.extent, Severity::Note, "hash-comment",
                     QStringLiteral("'#' does not start a comment: the line is read as the key %1")
                         .arg(quoted(entry.key)));
        return;
    }
    if (entry.extent.begin == 0 && entry.name.startsWith("\xEF\xBB\xBF")) {
        findings.add(entry.extent, Severity::Error, "byte-order-mark",
                     QStringLiteral("the byte order mark is part of this key's name"));
    } else {
        NameRules::checkSpelling(entry.extent, entry.name, findings);
    }
    if (entry.name.contains('"')) {
        findings.add(
            entry.extent, Severity::Warning, "quotes",
            QStringLiteral("quotes are part of the key's name: %1").arg(quoted(entry.key)));
    }
    checkPath(entry, findings);
}

// Reports each line whose value another line replaces.
void checkDuplicates(const QVector<IniEntry>& entries, FindingCollector& findings)
{
    QHash<QString, const IniEntry*> lasts; // by section and path
    for (auto entry = entries.crbegin(); entry != entries.crend(); ++entry) {
        const IniEntry*& last = lasts[entry->prefix + QChar(QChar::Null) + entry->key];
        if (last == nullptr) {
            last = &*entry;
        } else if (!entry->isCommentedOut()) {
            const bool isSame = last->value.texts() == entry->value.texts();
            findings.add(
                entry->extent, isSame ? Severity::Note : Severity::Error, "duplicate-key",
                QStringLiteral("%1 is a duplicate: the value in line %2 counts, not this one")
                    .arg(quoted(entry->path()))
                    .arg(last->extent.first));
        }
    }
}

// Reports each spelling once, at its first line.
void checkCase(const QVector<IniEntry>& entries, FindingCollector& findings)
{
    QHash<QString, const IniEntry*> firsts;
    QHash<QString, int> spellings;
    for (const IniEntry& entry : entries) {
        if (entry.isCommentedOut()) {
            continue;
        }
        const IniEntry*& first = firsts[entry.prefix + entry.key.toCaseFolded()];
        if (first == nullptr) {
            first = &entry;
        } else if (first->key != entry.key && !spellings.contains(entry.path())) {
            findings.add(entry.extent, Severity::Warning, "case",
                         QStringLiteral("%1 and %2 in line %3 are different keys: case matters")
                             .arg(quoted(entry.key), quoted(first->key))
                             .arg(first->extent.first));
        }
        spellings.insert(entry.path(), entry.extent.first);
    }
}

} // namespace

void KeyRules::check(const IniReading& reading, FindingCollector& findings)
{
    for (const IniEntry& entry : reading.entries()) {
        checkName(entry, findings);
    }
    checkDuplicates(reading.entries(), findings);
    checkCase(reading.entries(), findings);
}
