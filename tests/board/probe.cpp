// Uses the library's classes on a board, one per command, and prints their results and events, one
// per line. Qt writes the library's log messages to standard error.

#include <BootInformationHelper.h>
#include <DirectoryWatcher.h>
#include <IniFileManager.h>
#include <MediaWatcher.h>
#include <QProcessHandler.h>
#include <RecursiveFileSearchWorkerThread.h>
#include <TextFileParser.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFileInfo>
#include <QtCore/QThreadPool>
#include <QtCore/QTimer>

#include <cstdio>
#include <cstring>

namespace {

void print(const QString& line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

int openDescriptors()
{
    // The listing itself has one open.
    return int(QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::Files | QDir::System).size()) -
           1;
}

int boot(const QStringList& arguments)
{
    const BootInformationHelper helper;
    if (arguments.contains(QStringLiteral("--delete-update-marker"))) {
        helper.deleteFirmwareUpdateMarker();
    }
    if (arguments.contains(QStringLiteral("--delete-reboot-marker"))) {
        helper.deleteOrvalisRebootMarker();
    }
    switch (helper.getCurrentBootMode()) {
    case BootInformationHelper::BootModeHardReset:
        print(QStringLiteral("hard reset"));
        break;
    case BootInformationHelper::BootModeFirmwareUpdate:
        print(QStringLiteral("firmware update"));
        break;
    case BootInformationHelper::BootModeFactoryReset:
        print(QStringLiteral("factory reset"));
        break;
    case BootInformationHelper::BootModeNormal:
        print(QStringLiteral("normal"));
        break;
    }
    return 0;
}

// Sets as many keys as the third argument, with a sync() after each; prints how many of them the
// file contains afterwards.
int settings(const QStringList& arguments)
{
    const QString& path = arguments.at(0);
    const QString& prefix = arguments.at(1);
    const int count = arguments.at(2).toInt();
    const QString group = QStringLiteral("Probe");
    {
        IniFileManager manager(path, "UTF-8");
        for (int number = 0; number < count; ++number) {
            manager.setValue(group, prefix + QString::number(number), number);
            manager.sync();
        }
    }
    QProcessHandler reader;
    int found = 0;
    reader.startProcess(QStringLiteral("cat"), {path});
    for (int number = 0; number < count; ++number) {
        const QString line = QStringLiteral("\n%1%2=%2\n").arg(prefix).arg(number);
        found += reader.getStandardOutput().contains(line) ? 1 : 0;
    }
    print(QStringLiteral("%1 of %2 in the file").arg(found).arg(count));
    return 0;
}

// Watches the directory of a medium and prints events. A change of the directory starts a search
// with MediaWatcher and with the worker.
class Medium : public QObject
{
public:
    explicit Medium(const QString& directory) : m_directory(directory), m_media(nullptr)
    {
        m_media.setRecursive(true);
        m_media.setFileMatchPatternList({QStringLiteral("*.csv")});
        connect(&m_media, &MediaWatcher::filesFound, this, [](const QFileInfoList& files) {
            print(QStringLiteral("media watcher: %1 files").arg(files.size()));
        });
    }

    void search()
    {
        m_media.mediumMounted(m_directory);
        auto* worker = new RecursiveFileSearchWorkerThread(m_directory, {QStringLiteral("*.csv")});
        connect(worker, &RecursiveFileSearchWorkerThread::searchFinished, this,
                [](const QStringList& files) {
                    print(QStringLiteral("worker: %1 files").arg(files.size()));
                });
        QThreadPool::globalInstance()->start(worker);
    }

    void watch()
    {
        m_directories.reset(new DirectoryWatcher(m_directory));
        m_directories->setDelayInMs(500);
        connect(m_directories.data(), &DirectoryWatcher::directoryChanged, this,
                [this](QStringList changed) {
                    changed.removeDuplicates();
                    print(QStringLiteral("directory watcher: ") + changed.join(QLatin1Char(' ')));
                    search();
                });
    }

private:
    QString m_directory;
    MediaWatcher m_media;
    QScopedPointer<DirectoryWatcher> m_directories;
};

// Runs until the file /run/end exists, then prints how many descriptors leaked. The file
// /run/mounted replaces the system's notification of a mount: when it appears, the directory is
// watched anew and searched.
int medium(const QStringList& arguments)
{
    const QString mounted = QStringLiteral("/run/mounted");
    const int before = openDescriptors();
    {
        Medium medium(arguments.at(0));
        medium.watch();
        QTimer timer;
        bool wasMounted = false;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            if (QFile::exists(QStringLiteral("/run/end"))) {
                QCoreApplication::quit();
            }
            const bool isMounted = QFile::exists(mounted);
            if (isMounted != wasMounted) {
                wasMounted = isMounted;
                print(isMounted ? QStringLiteral("mounted") : QStringLiteral("unmounted"));
                if (isMounted) {
                    medium.watch();
                    medium.search();
                }
            }
        });
        timer.start(100);
        print(QStringLiteral("watching"));
        QCoreApplication::exec();
    }
    QThreadPool::globalInstance()->waitForDone();
    print(QStringLiteral("descriptors: %1 more than before").arg(openDescriptors() - before));
    return 0;
}

// Prints how often an expression matches in a file, the last match, and the error.
int text(const QStringList& arguments)
{
    QElapsedTimer clock;
    clock.start();
    TextFileParser parser(arguments.at(0));
    const QStringList matches = parser.multiMatch(QRegularExpression(arguments.at(1)));
    print(QStringLiteral("%1 matches, the last one \"%2\", %3")
              .arg(matches.size())
              .arg(matches.isEmpty() ? QString() : matches.last(),
                   parser.hasError() ? parser.getLastError() : QStringLiteral("no error")));
    std::fprintf(stderr, "%lld ms\n", static_cast<long long>(clock.elapsed()));
    return 0;
}

// Runs a program with a timeout in milliseconds.
int process(const QStringList& arguments)
{
    QProcessHandler handler;
    handler.setWaitForFinishedTimeout(arguments.at(0).toInt());
    const int exitCode = handler.startProcess(arguments.at(1), arguments.mid(2));
    print(QStringLiteral("exit code %1, %2, %3 characters")
              .arg(exitCode)
              .arg(handler.getLastExitStatus() == QProcess::CrashExit ? QStringLiteral("crashed")
                                                                      : QStringLiteral("ended"))
              .arg(handler.getStandardOutput().size()));
    return 0;
}

// Allocates memory until the kernel kills the process.
int memory(const QStringList& /*arguments*/)
{
    constexpr size_t piece = size_t(4) * 1024 * 1024;
    for (;;) {
        std::memset(new char[piece], 1, piece);
    }
}

struct Command
{
    const char* name;
    int arguments;
    int (*run)(const QStringList& arguments);
};

constexpr Command commands[] = {
    {"boot", 0, &boot}, {"settings", 3, &settings}, {"medium", 1, &medium},
    {"text", 2, &text}, {"process", 2, &process},   {"memory", 0, &memory},
};

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    for (const Command& command : commands) {
        if (arguments.value(1) == QLatin1String(command.name) &&
            arguments.size() - 2 >= command.arguments) {
            return command.run(arguments.mid(2));
        }
    }
    std::fputs("board-probe: unknown command, or too few arguments\n", stderr);
    return 2;
}
