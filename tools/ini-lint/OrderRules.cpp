#include "OrderRules.h"

#include "IniReading.h"
#include "NameRules.h"

#include <QtCore/QHash>
#include <QtCore/QSet>

#include <set>

using NameRules::quoted;

namespace {

using Prefixes = std::set<QString>;

Prefixes prefixesOf(const IniReading& reading)
{
    Prefixes result = {QString()};
    for (const IniSection& section : reading.sections()) {
        result.insert(section.prefix);
    }
    return result;
}

// Returns, for each path, the sections that contain a key of that path.
QHash<QString, QSet<QString>> holdersOf(const QVector<IniEntry>& entries)
{
    QHash<QString, QSet<QString>> result;
    for (const IniEntry& entry : entries) {
        result[entry.path()].insert(entry.prefix);
    }
    return result;
}

/*
 * Whether the first look-up of a path makes QSettings parse a section that contains it. QSettings
 * parses the section with the last name that does not sort after the path. A look-up of a path with
 * a slash never parses the top level.
 */
bool isFoundImmediately(const QString& path, const Prefixes& prefixes, const QSet<QString>& holders)
{
    if (!path.contains(QLatin1Char('/'))) {
        return holders.contains(QString());
    }
    const QString& section = *std::prev(prefixes.upper_bound(path));
    return !section.isEmpty() && holders.contains(section);
}

// Reports keys that several sections contain with different values.
void checkSections(const QVector<IniEntry>& entries, FindingCollector& findings)
{
    QHash<QString, const IniEntry*> lasts;
    for (const IniEntry& entry : entries) {
        const IniEntry*& last = lasts[entry.path()];
        if (last != nullptr && last->prefix != entry.prefix &&
            last->value.texts() != entry.value.texts()) {
            findings.add(entry.extent, Severity::Error, "read-order",
                         QStringLiteral("%1 also has a value in another section, in line %2: which "
                                        "one counts depends on what the program reads first")
                             .arg(quoted(entry.path()))
                             .arg(last->extent.first));
        }
        last = &entry;
    }
}

} // namespace

void OrderRules::check(const IniReading& reading, FindingCollector& findings)
{
    const Prefixes prefixes = prefixesOf(reading);
    const QHash<QString, QSet<QString>> holders = holdersOf(reading.entries());
    QSet<QString> paths; // that have been checked: one finding for duplicates is enough
    for (const IniEntry& entry : reading.entries()) {
        const QString path = entry.path();
        if (entry.isCommentedOut() || NameRules::isUnreachable(path) || paths.contains(path)) {
            continue;
        }
        paths.insert(path);
        if (!isFoundImmediately(path, prefixes, holders.value(path))) {
            findings.add(entry.extent, Severity::Error, "read-order",
                         QStringLiteral("a look-up of %1 fails until its section has been read for "
                                        "another reason, such as listing the keys")
                             .arg(quoted(path)));
        }
    }
    checkSections(reading.entries(), findings);
}
