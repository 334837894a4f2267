// Searches a directory in a thread pool, so that the application's thread is not blocked.

#include <RecursiveFileSearchWorkerThread.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QThreadPool>

#include <cstdio>

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QString path = QDir::current().filePath(QStringLiteral("stick"));
    QDir(path).mkpath(QStringLiteral("2026"));
    QFile(QDir(path).filePath(QStringLiteral("2026/trend.csv"))).open(QIODevice::WriteOnly);

    //! [search]
    auto* worker = new RecursiveFileSearchWorkerThread(path, {QStringLiteral("*.csv")});
    // The worker emits in a thread of the pool. Because of the receiver, which belongs to this
    // thread, Qt delivers the signal through this thread's event loop.
    QObject::connect(worker, &RecursiveFileSearchWorkerThread::searchFinished, &application,
                     [](const QStringList& files) {
                         std::printf("found: %s\n", qPrintable(files.join(QLatin1Char(' '))));
                         QCoreApplication::quit();
                     });
    QThreadPool::globalInstance()->start(worker); // deletes the worker afterwards
    //! [search]
    return QCoreApplication::exec();
}
