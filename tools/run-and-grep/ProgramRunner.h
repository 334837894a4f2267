#ifndef TOOLS_RUNANDGREP_PROGRAMRUNNER_H
#define TOOLS_RUNANDGREP_PROGRAMRUNNER_H

#include "common/EndSignals.h"

#include <QtCore/QByteArray>
#include <QtCore/QProcess>
#include <QtCore/QString>
#include <QtCore/QStringList>

/*
 * Runs a program in a session, and so in a process group, of its own: a time-out, Ctrl-C, SIGTERM
 * and SIGHUP reach whatever it has started, too. QProcessHandler can neither be interrupted nor do
 * that.
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

    // Of an interrupted program.
    int signalNumber() const { return m_signalNumber; }

    // Of one that ended by itself; where it crashed the exit code is the number of its signal.
    using QProcess::exitCode;
    bool hasCrashed() const { return exitStatus() == CrashExit; }

    // What it wrote on standard output, followed by what it wrote on standard error.
    QByteArray takeOutput();

protected:
    void setupChildProcess() override;

private:
    void stop(int signalNumber);

    const EndSignals m_signals;
    int m_signalNumber = 0;
};

#endif
