// Compares file names with wildcard patterns, and searches a directory for names that match.

#include <WildcardFilter.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <cstdio>

int main()
{
    //! [filter]
    const QStringList patterns{QStringLiteral("*.csv"), QStringLiteral("trend??.txt")};
    const WildcardFilter filter(patterns, QDir::CaseSensitive);
    const QStringList names{QStringLiteral("week.csv"), QStringLiteral("WEEK.CSV"),
                            QStringLiteral("trend07.txt"), QStringLiteral("trend7.txt")};
    for (const QString& name : names) {
        std::printf("%s: %s\n", qPrintable(name), filter.matchesFilters(name) ? "yes" : "no");
    }
    //! [filter]

    //! [search]
    const QString stick = concatenatePaths(QDir::currentPath(), QStringLiteral("stick"));
    QDir().mkpath(concatenatePaths(stick, QStringLiteral("2026")));
    QFile(concatenatePaths(stick, QStringLiteral("2026/WEEK.CSV"))).open(QIODevice::WriteOnly);

    // Results are paths relative to the directory. A search ignores case, unlike the filter above.
    QStringList paths;
    searchFilesOnPathRecursive(stick, patterns, paths);
    std::printf("searched: %s\n", qPrintable(paths.join(QLatin1Char(' '))));
    //! [search]
    return 0;
}
