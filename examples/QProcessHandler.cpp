// Runs a program, waits until it exits, and prints its output.

#include <QProcessHandler.h>

#include <cstdio>

int main()
{
    //! [run]
    QProcessHandler handler;
    handler.setWaitForFinishedTimeout(5000);
    // Without a file, standard input remains open and empty: this program would wait for input
    // until the time-out.
    handler.setStandardInputFile(QStringLiteral("os-release"));
    const int exitCode = handler.startProcess(QStringLiteral("sort"), {QStringLiteral("-r")});
    std::printf("exit code %d\n%s", exitCode, qPrintable(handler.getStandardOutput()));
    //! [run]

    // A program that cannot be started or does not exit in time has no exit code: the result is -1
    // and the library logs a warning.
    std::printf("exit code %d\n", handler.startProcess(QStringLiteral("no-such-program"), {}));
    return 0;
}
