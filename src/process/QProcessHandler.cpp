#include "QProcessHandler.h"

#include "common/Log.h"

namespace {

constexpr int defaultTimeoutInMs = 30000;

void logTimeout(const QMessageLogger& log, const char* text, const QString& program,
                const QStringList& arguments, QProcess& process)
{
    log.warning() << text << program << " " << arguments.join(QLatin1Char(' ')) << ", "
                  << process.readAllStandardOutput() << " , " << process.readAllStandardError();
}

// Qt 5.15 does not notice if fork() fails: QProcess then assumes that it runs the process -1.
// Killing that one would kill every process that the user may signal.
class UnstartedProcess : public QProcess
{
public:
    static void forget(QProcess& process)
    {
        (process.*&UnstartedProcess::setProcessState)(NotRunning);
    }
};

} // namespace

QProcessHandler::QProcessHandler()
    : m_waitForStartedTimeout(defaultTimeoutInMs)
    , m_waitForFinishedTimeout(defaultTimeoutInMs)
    , m_lastExitStatus(QProcess::CrashExit)
{
}

QProcessHandler::~QProcessHandler() = default;

int QProcessHandler::startProcess(const QString& program, const QStringList& arguments)
{
    clearLastStates();
    m_process.start(program, arguments, QIODevice::ReadWrite);
    if (m_process.processId() < 0) {
        UnstartedProcess::forget(m_process);
    }
    if (!m_process.waitForStarted(m_waitForStartedTimeout)) {
        logTimeout(MISCTOOLS_LOG(QProcessHandler), "Timeout on starting command ", program,
                   arguments, m_process);
        saveLastStates();
        return -1;
    }
    if (!m_process.waitForFinished(m_waitForFinishedTimeout)) {
        logTimeout(MISCTOOLS_LOG(QProcessHandler), "Timeout from command ", program, arguments,
                   m_process);
        saveLastStates();
        return -1;
    }
    const int exitCode = m_process.exitCode();
    saveLastStates();
    return exitCode;
}

void QProcessHandler::setWaitForStartedTimeout(int milliseconds)
{
    m_waitForStartedTimeout = milliseconds;
}

void QProcessHandler::setWaitForFinishedTimeout(int milliseconds)
{
    m_waitForFinishedTimeout = milliseconds;
}

void QProcessHandler::setStandardInputFile(const QString& fileName)
{
    m_process.setStandardInputFile(fileName);
}

void QProcessHandler::setWorkingDirectory(const QString& directory)
{
    m_process.setWorkingDirectory(directory);
}

QString QProcessHandler::getStandardOutput() const
{
    return m_standardOutput;
}

QString QProcessHandler::getStandardError() const
{
    return m_standardError;
}

int QProcessHandler::getLastExitStatus() const
{
    return m_lastExitStatus;
}

void QProcessHandler::clearLastStates()
{
    m_standardOutput.clear();
    m_standardError.clear();
    m_lastExitStatus = QProcess::CrashExit;
}

void QProcessHandler::saveLastStates()
{
    m_standardOutput = QString::fromUtf8(m_process.readAllStandardOutput());
    m_standardError = QString::fromUtf8(m_process.readAllStandardError());
    m_lastExitStatus = m_process.exitStatus();
}
