#include "ChildProcess.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include <grp.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr unsigned int ordinaryUser = 65534; // "nobody"

// Whether any other thread of this process is running.
bool isAnotherThreadRunning()
{
    const QByteArray own = QByteArray::number(qint64(syscall(SYS_gettid)));
    const QString tasks = "/proc/self/task/";
    const QStringList threads = QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& thread : threads) {
        QFile file(tasks + thread + "/stat");
        if (thread.toLatin1() != own && file.open(QIODevice::ReadOnly)) {
            const QByteArray stat = file.readAll(); // "number (name) state ..."
            if (stat.mid(stat.lastIndexOf(')')).startsWith(") R")) {
                return true;
            }
        }
    }
    return false;
}

[[noreturn]] void runInChild(const std::function<int()>& function, int outputDescriptor)
{
    // Intended crashes need no core file.
    const rlimit noCore = {0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    dup2(outputDescriptor, STDOUT_FILENO);
    dup2(outputDescriptor, STDERR_FILENO);
    close(outputDescriptor);
    qInstallMessageHandler(nullptr);
    // Otherwise Qt checks for a terminal and may log to the system journal.
    qputenv("QT_LOGGING_TO_CONSOLE", "1");

    ChildProcess::leave(function());
}

} // namespace

void ChildProcess::leave(int exitCode)
{
    fflush(nullptr);
#ifdef MISCTOOLS_COVERAGE
    // The exit handler of each library writes its coverage counts. If the child has no permission
    // to write them, it reports that, which must not become part of the function's output.
    close(STDOUT_FILENO);
    close(STDERR_FILENO);
    exit(exitCode);
#else
    _exit(exitCode); // does not run the parent's exit handlers and destructors
#endif
}

void ChildProcess::letOtherThreadsSleep()
{
    constexpr int longWhileInMs = 1000;

    QElapsedTimer clock;
    clock.start();
    while (isAnotherThreadRunning() && clock.elapsed() < longWhileInMs) {
        usleep(100);
    }
}

ChildResult ChildProcess::run(const std::function<int()>& function)
{
    int descriptors[2];
    if (pipe(descriptors) != 0) {
        qFatal("cannot create a pipe for a child process");
    }
    letOtherThreadsSleep();
    fflush(nullptr);
    const pid_t child = fork();
    if (child < 0) {
        qFatal("cannot start a child process");
    }
    if (child == 0) {
        close(descriptors[0]);
        runInChild(function, descriptors[1]);
    }
    close(descriptors[1]);

    ChildResult result;
    char buffer[4096];
    ssize_t count = 0;
    while ((count = read(descriptors[0], buffer, sizeof buffer)) > 0 ||
           (count < 0 && errno == EINTR)) {
        if (count > 0) {
            result.output.append(buffer, int(count));
        }
    }
    close(descriptors[0]);

    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    result.exited = WIFEXITED(status);
    if (result.exited) {
        result.exitCode = WEXITSTATUS(status);
    } else if (WIFSIGNALED(status)) {
        result.signal = WTERMSIG(status);
    }
    return result;
}

ChildResult ChildProcess::runAsOrdinaryUser(const std::function<int()>& function)
{
    return run([&function] {
        if (geteuid() == 0 && (setgroups(0, nullptr) != 0 ||
                               setresgid(ordinaryUser, ordinaryUser, ordinaryUser) != 0 ||
                               setresuid(ordinaryUser, ordinaryUser, ordinaryUser) != 0)) {
            fprintf(stderr, "cannot become an ordinary user\n");
            return 255;
        }
        return function();
    });
}
