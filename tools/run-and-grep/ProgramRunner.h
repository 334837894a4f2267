#ifndef TOOLS_RUNANDGREP_PROGRAMRUNNER_H
#define TOOLS_RUNANDGREP_PROGRAMRUNNER_H

#include "common/EndSignals.h"

#include <QtCore/QByteArray>
#include <QtCore/QProcess>
#include <QtCore/QString>
#include <QtCore/QStringList>

/*
 * Runs a program in its own session and process group, so that a time-out, Ctrl-C, SIGTERM and
 * SIGHUP also reach the programs that it has started. QProcessHandler supports neither that nor an
 * interruption.
 */
class ProgramRunner : private QProcess
{
public:
    enum End
    {
        ByItself,
        NotStarted,
        TimedOut,
        Interrupted
    };

    End run(const QString& program, const QStringList& arguments, int timeoutInMs);

    // Returns the signal that interrupted the program.
    int signalNumber() const { return m_signalNumber; }

    // For a program that exited by itself. If it crashed, the exit code is the number of the
    // signal.
    using QProcess::exitCode;
    bool hasCrashed() const { return exitStatus() == CrashExit; }

    // Returns its standard output, followed by its standard error.
    QByteArray takeOutput();

protected:
    void setupChildProcess() override;

private:
    void stop(int signalNumber);

    const EndSignals m_signals;
    int m_signalNumber = 0;
};

#endif
