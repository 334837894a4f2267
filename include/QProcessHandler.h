#ifndef MISCTOOLS_QPROCESSHANDLER_H
#define MISCTOOLS_QPROCESSHANDLER_H

#include "MiscToolsGlobal.h"

#include <QtCore/QProcess>
#include <QtCore/QString>
#include <QtCore/QStringList>

/*!
 * \brief Runs a program, waits until it exits, and keeps its output.
 *
 * Use it for short-lived programs with little output. Do not use it in a thread that must stay
 * responsive, for a program with which the caller must interact, or for large output, which is held
 * in memory: use QProcess and its signals instead.
 *
 * \snippet QProcessHandler.cpp run
 *
 * \par Contract
 * - **Threads:** reentrant; one object must not be used in two threads at a time. startProcess()
 *   blocks for up to the sum of both time-outs.
 * - **Ownership:** the object owns its process; destroying it kills a program that is still
 *   running.
 * - **Errors:** nothing throws. A time-out or a program that cannot be started returns -1. On
 *   Linux, no exit code is -1: a program that calls exit(-1) has the exit code 255.
 * - **Log messages:** one warning for each -1; see
 *   \ref log-messages-qprocesshandler "log messages of QProcessHandler".
 * - **Units and formats:** time-outs are in milliseconds. Output is decoded as UTF-8 up to its
 *   first zero byte. The program's standard input remains open and empty unless a file is set.
 *
 * \sa \ref programs, \ref gotchas
 * \since 1.0
 */
class MISCTOOLS_EXPORT QProcessHandler
{
public:
    /*! \brief Creates a handler; both time-outs are 30 seconds. */
    QProcessHandler();
    virtual ~QProcessHandler();

    /*!
     * \brief Runs \a program with \a arguments and waits until it exits.
     *
     * \return the exit code, also after a crash (see getLastExitStatus()); -1 if the program did
     *         not start or did not exit in time
     *
     * After a time-out the program keeps running. Until it exits no other program can be started:
     * the next call waits for the old one.
     *
     * Warns "Timeout on starting command " or "Timeout from command ", each with the program, its
     * arguments, and its output so far, which is then no longer part of the kept output.
     */
    int startProcess(const QString& program, const QStringList& arguments);

    /*! \brief Sets the time-out for the program's start; a negative one means no limit. */
    void setWaitForStartedTimeout(int milliseconds);
    /*! \brief Sets the time-out for the program's exit; a negative one means no limit. */
    void setWaitForFinishedTimeout(int milliseconds);

    /*! \brief Sets the file that later programs read as their standard input. */
    void setStandardInputFile(const QString& fileName);
    /*! \brief Sets the working directory of later programs. */
    void setWorkingDirectory(const QString& directory);

    /*! \brief Returns what the last program wrote to its standard output. */
    QString getStandardOutput() const;
    /*! \brief Returns what the last program wrote to its standard error. */
    QString getStandardError() const;
    /*!
     * \brief Returns how the last program ended, as a QProcess::ExitStatus: 0 for a normal exit, 1
     *        for a crash.
     *
     * Returns 1 before the first run. For a program that is still running, returns what
     * QProcess::exitStatus() returns.
     */
    int getLastExitStatus() const;

    /*! \brief Clears the kept output; the exit status becomes 1. */
    void clearLastStates();
    /*! \brief Replaces the kept output with what can be read now, and keeps the exit status. */
    void saveLastStates();

private:
    Q_DISABLE_COPY(QProcessHandler)

    QProcess m_process;
    int m_waitForStartedTimeout;
    int m_waitForFinishedTimeout;
    QString m_standardOutput;
    QString m_standardError;
    int m_lastExitStatus;
};

#endif
