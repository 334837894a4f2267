#include "ProgramRunner.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QThread>

#include <sys/prctl.h>
#include <unistd.h>

namespace {

constexpr int pollIntervalInMs = 20;
// For programs that end in good order.
constexpr int graceInMs = 2000;

} // namespace

ProgramRunner::End ProgramRunner::run(const QString& program, const QStringList& arguments,
                                      int timeoutInMs)
{
    QElapsedTimer clock;
    clock.start();
    // Nobody types; a program that reads should not wait for it.
    setStandardInputFile(nullDevice());
    start(program, arguments);
    if (processId() < 0) {
        // Qt 5.15 does not notice that the system has no process left, and would kill number -1.
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
    // Also when this program itself is killed.
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    m_signals.release();
}

// Ends the whole group; the program itself may have ended before what it has started.
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
