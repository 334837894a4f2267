#include "ProgramRun.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QFileInfo>
#include <QtTest/QtTest>

#include <csignal>

namespace {

constexpr int timeoutInMs = 30000;

} // namespace

void verifyResult(const ProgramResult& result, int exitCode, const QString& output,
                  const QString& errors)
{
    QCOMPARE(result.errors, errors);
    QCOMPARE(result.output, output);
    QCOMPARE(result.exitCode, exitCode);
}

QStringList preloadOf(const QString& libraryPath)
{
    const QFileInfo library(libraryPath);
    return {QStringLiteral("LD_LIBRARY_PATH=%1:%2")
                .arg(library.path(), qEnvironmentVariable("LD_LIBRARY_PATH")),
            QStringLiteral("LD_PRELOAD=") + library.fileName(),
            // By default, the runtime of a sanitizer insists on being loaded first.
            QStringLiteral("ASAN_OPTIONS=verify_asan_link_order=0")};
}

ProgramRun::ProgramRun(const QString& program, const QStringList& arguments,
                       const QString& directory, const QString& temporaryDirectory)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    environment.insert(QStringLiteral("TMPDIR"), temporaryDirectory);
    m_process.setProcessEnvironment(environment);
    m_process.setWorkingDirectory(directory);
    m_process.start(program, arguments);
}

void ProgramRun::ForegroundProcess::setupChildProcess()
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        signal(number, SIG_DFL);
    }
}

void ProgramRun::write(const QByteArray& input)
{
    m_process.write(input);
    while (m_process.bytesToWrite() > 0 && m_process.waitForBytesWritten(timeoutInMs)) {
    }
}

void ProgramRun::send(int signalNumber)
{
    kill(static_cast<pid_t>(m_process.processId()), signalNumber);
}

bool ProgramRun::waitForOutput(const QString& text, int times)
{
    QElapsedTimer clock;
    clock.start();
    while (m_output.count(text.toUtf8()) < times && clock.elapsed() < timeoutInMs) {
        const bool hasMore = m_process.waitForReadyRead(timeoutInMs);
        m_output += m_process.readAllStandardOutput();
        if (!hasMore) {
            break;
        }
    }
    return m_output.count(text.toUtf8()) >= times;
}

bool ProgramRun::isRunning() const
{
    return m_process.state() == QProcess::Running;
}

ProgramResult ProgramRun::finish()
{
    ProgramResult result;
    m_process.closeWriteChannel();
    const bool isFinished =
        m_process.state() == QProcess::NotRunning || m_process.waitForFinished(timeoutInMs);
    if (isFinished && m_process.error() != QProcess::FailedToStart &&
        m_process.exitStatus() == QProcess::NormalExit) {
        result.exitCode = m_process.exitCode();
    }
    m_output += m_process.readAllStandardOutput();
    result.output = QString::fromUtf8(m_output);
    result.errors = QString::fromUtf8(m_process.readAllStandardError());
    return result;
}
