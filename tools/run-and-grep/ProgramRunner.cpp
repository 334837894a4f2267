#include "ProgramRunner.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QThread>

#include <sys/prctl.h>
#include <unistd.h>

namespace {

constexpr int pollIntervalInMs = 20;
// The time in which a program can exit in an orderly way.
constexpr int graceInMs = 2000;

} // namespace

ProgramRunner::End ProgramRunner::run(const QString& program, const QStringList& arguments,
                                      int timeoutInMs)
{
    QElapsedTimer clock;
    clock.start();
    // A program that reads its standard input must not wait for it.
    setStandardInputFile(nullDevice());
    start(program, arguments);
    if (processId() < 0) {
        // Qt 5.15 does not notice if fork() fails, and would kill the process -1.
        setProcessState(NotRunning);
    }
    if (!waitForStarted(-1)) {
        m_signals.release();
        return NotStarted;
    }
    End end = ByItself;
    while (end == ByItself && !waitForFinished(pollIntervalInMs)) {
        m_signalNumber = m_signals.take();
        if (m_signalNumber != 0) {
            end = Interrupted;
        } else if (clock.elapsed() >= timeoutInMs) {
            end = TimedOut;
        }
    }
    if (end != ByItself) {
        stop(end == Interrupted ? m_signalNumber : SIGTERM);
    }
    m_signals.release();
    return end;
}

QByteArray ProgramRunner::takeOutput()
{
    QByteArray output = readAllStandardOutput();
    const QByteArray errors = readAllStandardError();
    if (!output.isEmpty() && !errors.isEmpty() && !output.endsWith('\n')) {
        output += '\n';
    }
    return output + errors;
}

void ProgramRunner::setupChildProcess()
{
    setsid();
    // Stops the program even if run-and-grep itself is killed.
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    m_signals.release();
}

// Stops the entire process group: the program may have exited before its children.
void ProgramRunner::stop(int signalNumber)
{
    const pid_t group = pid_t(processId());
    ::kill(-group, signalNumber);
    QElapsedTimer clock;
    clock.start();
    while (::kill(-group, 0) == 0 && clock.elapsed() < graceInMs) {
        if (!waitForFinished(pollIntervalInMs)) {
            QThread::msleep(1);
        }
    }
    ::kill(-group, SIGKILL);
    waitForFinished(-1);
}
