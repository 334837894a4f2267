// Lists the files on a medium that the application has just mounted.

#include <MediaWatcher.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <cstdio>

int main()
{
    // A directory represents the medium. One of its files matches the pattern, the other does not.
    const QString mountPoint = QDir::current().filePath(QStringLiteral("stick"));
    const QDir medium(mountPoint);
    medium.mkpath(QStringLiteral("2026"));
    QFile(medium.filePath(QStringLiteral("2026/trend.csv"))).open(QIODevice::WriteOnly);
    QFile(medium.filePath(QStringLiteral("readme.txt"))).open(QIODevice::WriteOnly);

    //! [search]
    MediaWatcher media(nullptr);
    media.setRecursive(true);
    media.setFileMatchPatternList({QStringLiteral("*.csv")});
    QObject::connect(&media, &MediaWatcher::filesFound, [](const QFileInfoList& files) {
        for (const QFileInfo& file : files) {
            std::printf("found %s\n", qPrintable(file.fileName()));
        }
    });
    // The watcher does not detect mounts: the application calls its slot.
    // The signal is emitted before this call returns.
    media.mediumMounted(mountPoint);
    //! [search]

    // No file matches, so there is no signal.
    media.setFileMatchPatternList({QStringLiteral("*.mp3")});
    media.mediumMounted(mountPoint);
    std::puts("no more");
    return 0;
}
