// Waits until files are created in a directory, and receives one signal for all of them.

#include <DirectoryWatcher.h>

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
    QDir().mkdir(QStringLiteral("stick"));
    const QDir stick(QDir::current().filePath(QStringLiteral("stick")));

    //! [watch]
    DirectoryWatcher watcher(stick.path());
    // The signal is emitted when nothing has changed for this time: it reports a burst of changes.
    watcher.setDelayInMs(200);
    QObject::connect(&watcher, &DirectoryWatcher::directoryChanged, &application,
                     [](const QStringList& directories) {
                         const QDir changed(directories.value(0));
                         std::printf("changed: %s\n", qPrintable(changed.dirName()));
                         QCoreApplication::quit();
                     });
    //! [watch]

    // Two changes, one signal.
    createFile(stick.filePath(QStringLiteral("a.csv")));
    createFile(stick.filePath(QStringLiteral("b.csv")));
    // The watcher detects changes, and measures its delay, in the event loop.
    return QCoreApplication::exec();
}
