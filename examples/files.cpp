#include <DirectoryWatcher.h>
#include <MediaWatcher.h>
#include <WildcardFilter.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>

#include <cstdio>

namespace {

void createFile(const QString& path)
{
    QFile(path).open(QIODevice::WriteOnly);
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QString medium = concatenatePaths(QDir::currentPath(), QStringLiteral("stick"));
    QDir().mkpath(concatenatePaths(medium, QStringLiteral("2026")));
    createFile(concatenatePaths(medium, QStringLiteral("2026/trend.csv")));
    createFile(concatenatePaths(medium, QStringLiteral("readme.txt")));

    // What a medium holds. The answer comes within the call.
    const QStringList patterns{QStringLiteral("*.csv")};
    MediaWatcher media(nullptr);
    media.setRecursive(true);
    media.setFileMatchPatternList(patterns);
    QObject::connect(&media, &MediaWatcher::filesFound, [](const QFileInfoList& files) {
        for (const QFileInfo& file : files) {
            std::printf("found %s\n", qPrintable(file.fileName()));
        }
    });
    media.mediumMounted(medium);

    // The same without signals, as paths relative to the folder.
    QStringList paths;
    searchFilesOnPathRecursive(medium, patterns, paths);
    std::printf("searched: %s\n", qPrintable(paths.join(QLatin1Char(' '))));

    const WildcardFilter filter(patterns, QDir::CaseSensitive);
    std::printf("TREND.CSV fits: %s\n",
                filter.matchesFilters(QStringLiteral("TREND.CSV")) ? "yes" : "no");

    // What changes from now on, in bursts: two new files are one signal.
    DirectoryWatcher watcher(medium);
    watcher.setDelayInMs(200);
    QObject::connect(&watcher, &DirectoryWatcher::directoryChanged, &application,
                     [](const QStringList& folders) {
                         std::printf("changed: %s\n", folders.isEmpty() ? "nothing" : "stick");
                         QCoreApplication::quit();
                     });
    createFile(concatenatePaths(medium, QStringLiteral("a.csv")));
    createFile(concatenatePaths(medium, QStringLiteral("b.csv")));
    return QCoreApplication::exec();
}
