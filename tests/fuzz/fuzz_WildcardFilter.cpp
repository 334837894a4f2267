// The input contains patterns, one per line, followed by a line with the file name.
#include "Fuzz.h"
#include "WildcardFilter.h"

#include <QtCore/QDebug>
#include <QtCore/QRegExp>

#include <algorithm>
#include <vector>

namespace {

constexpr int sizeLimit = 400; // matching time grows with both sizes

// Whether the pattern uses only the two wildcards and needs no Unicode case folding. A lone closing
// bracket matches nothing; a backslash matches itself but also escapes a wildcard after it.
bool isPlain(const QString& pattern, const QString& fileName)
{
    const auto isPlainCharacter = [](QChar character) {
        return character.unicode() < 0x80 && character != QLatin1Char('[') &&
               character != QLatin1Char(']') && character != QLatin1Char('\\');
    };
    const auto isAscii = [](QChar character) { return character.unicode() < 0x80; };
    return std::all_of(pattern.cbegin(), pattern.cend(), isPlainCharacter) &&
           std::all_of(fileName.cbegin(), fileName.cend(), isAscii);
}

// Simple wildcard matching: records which prefixes of the name each prefix of the pattern matches.
bool matchesPlain(const QString& pattern, const QString& name, Qt::CaseSensitivity sensitivity)
{
    std::vector<bool> matched(size_t(name.size()) + 1);
    matched[0] = true;
    for (const QChar wanted : pattern) {
        std::vector<bool> next(matched.size());
        bool isReached = false;
        for (size_t end = 0; end < matched.size(); ++end) {
            isReached = isReached || matched[end];
            if (wanted == QLatin1Char('*')) {
                next[end] = isReached;
            } else if (end > 0 && matched[end - 1]) {
                const QChar character = name.at(int(end) - 1);
                next[end] = wanted == QLatin1Char('?') ||
                            QString::compare(QString(wanted), QString(character), sensitivity) == 0;
            }
        }
        matched.swap(next);
    }
    return matched.back();
}

bool literalMatch(const QStringList& patterns, const QString& name, Qt::CaseSensitivity sensitivity)
{
    if (name.isEmpty()) {
        qWarning() << "Can't match filter to empty file name:" << name;
        return false;
    }
    return std::any_of(patterns.cbegin(), patterns.cend(), [&](const QString& pattern) {
        const bool isMatch = QRegExp(pattern, sensitivity, QRegExp::Wildcard).exactMatch(name);
        if (isPlain(pattern, name)) {
            Fuzz::verify(isMatch == matchesPlain(pattern, name, sensitivity),
                         "a plain wildcard matches differently from the reference");
        }
        return isMatch;
    });
}

QStringList shown(bool isMatch)
{
    return QStringList(isMatch ? QStringLiteral("matches") : QStringLiteral("does not match")) +
           Fuzz::takeMessages();
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QStringList patterns =
        Fuzz::toText(Fuzz::toBytes(data, size, sizeLimit)).split(QLatin1Char('\n'));
    const QString fileName = patterns.takeLast();

    for (const auto sensitivity : {Qt::CaseInsensitive, Qt::CaseSensitive}) {
        const QStringList expected = shown(literalMatch(patterns, fileName, sensitivity));
        const WildcardFilter filter(patterns, sensitivity == Qt::CaseSensitive
                                                  ? QDir::Filters(QDir::CaseSensitive)
                                                  : QDir::Filters(QDir::AllEntries));
        Fuzz::verifySame("results", shown(filter.matchesFilters(fileName)), expected);
        // A match does not change the filter.
        const WildcardFilter copy(filter);
        Fuzz::verifySame("results of the second call", shown(copy.matchesFilters(fileName)),
                         expected);
    }
    return 0;
}
