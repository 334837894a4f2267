#include "KeyRules.h"

#include "IniReading.h"
#include "NameRules.h"

#include <QtCore/QHash>

using NameRules::quoted;

namespace {

const QChar slash = QLatin1Char('/');

void checkName(const IniEntry& entry, Findings& findings)
{
    const int line = entry.extent.first;
    if (entry.name.startsWith("\xEF\xBB\xBF")) {
        findings.append({line, QStringLiteral("byte-order-mark"),
                         QStringLiteral("a byte order mark is a part of this key's name")});
    } else {
        NameRules::checkSpelling(line, entry.name, findings);
    }
    if (entry.key.startsWith(QLatin1Char('#'))) {
        findings.append({line, QStringLiteral("hash-comment"),
                         QStringLiteral("'#' starts no comment: the line is read as the key %1")
                             .arg(quoted(entry.key))});
    }
    if (entry.name.contains('"')) {
        findings.append(
            {line, QStringLiteral("quotes"),
             QStringLiteral("quotes are a part of the key's name: %1").arg(quoted(entry.key))});
    }
    if (NameRules::isUnreachable(entry.key)) {
        findings.append({line, QStringLiteral("unreachable"),
                         entry.key.isEmpty()
                             ? QStringLiteral("there is no key before the '='; the value cannot be "
                                              "looked up")
                             : QStringLiteral("the key %1 cannot be looked up: a part of its name "
                                              "is empty")
                                   .arg(quoted(entry.key))});
    } else if (entry.key.contains(slash)) {
        const QString path = entry.path();
        findings.append({line, QStringLiteral("nested-name"),
                         QStringLiteral("%1 is nested: it is read as the key %2 of the group %3")
                             .arg(quoted(entry.key), quoted(path.section(slash, -1)),
                                  quoted(path.section(slash, 0, -2)))});
    }
}

void checkDuplicates(const QVector<IniEntry>& entries, Findings& findings)
{
    QHash<QString, const IniEntry*> lasts;
    for (const IniEntry& entry : entries) {
        const IniEntry*& last = lasts[entry.path()];
        if (last != nullptr) {
            const QString message =
                last->prefix == entry.prefix
                    ? QStringLiteral("%1 is given again: this value counts, not that of line %2")
                    : QStringLiteral("%1 is given in another section, too, in line %2: which value "
                                     "counts depends on what the program reads first");
            findings.append({entry.extent.first, QStringLiteral("duplicate-key"),
                             message.arg(quoted(entry.path())).arg(last->extent.first)});
        }
        last = &entry;
    }
}

// Each spelling once, at the first line that has it.
void checkCase(const QVector<IniEntry>& entries, Findings& findings)
{
    QHash<QString, const IniEntry*> firsts;
    QHash<QString, int> spellings;
    for (const IniEntry& entry : entries) {
        const IniEntry*& first = firsts[entry.prefix + entry.key.toCaseFolded()];
        if (first == nullptr) {
            first = &entry;
        } else if (first->key != entry.key && !spellings.contains(entry.path())) {
            findings.append({entry.extent.first, QStringLiteral("case"),
                             QStringLiteral("%1 is another key than %2 in line %3: case counts")
                                 .arg(quoted(entry.key), quoted(first->key))
                                 .arg(first->extent.first)});
        }
        spellings.insert(entry.path(), entry.extent.first);
    }
}

} // namespace

void KeyRules::check(const IniReading& reading, Findings& findings)
{
    for (const IniEntry& entry : reading.entries()) {
        checkName(entry, findings);
    }
    checkDuplicates(reading.entries(), findings);
    checkCase(reading.entries(), findings);
}
