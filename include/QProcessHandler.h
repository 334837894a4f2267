#ifndef MISCTOOLS_QPROCESSHANDLER_H
#define MISCTOOLS_QPROCESSHANDLER_H

#include "MiscToolsGlobal.h"

#include <QtCore/QProcess>
#include <QtCore/QString>
#include <QtCore/QStringList>

/*!
 * \brief Runs a program, waits for its end, and keeps its output.
 *
 * \snippet QProcessHandler.cpp run
 *
 * \par Contract
 * - **Threads:** one object, one thread; calls block for up to both time-outs together.
 * - **Ownership:** the object owns its process; destroying it kills a program that still runs.
 * - **Errors:** nothing throws. Time-outs and programs that cannot be started give -1 and one
 *   warning. No exit code is -1 on Linux: a program that leaves with -1 has the exit code 255.
 * - **Units and formats:** time-outs are in milliseconds. Output is decoded as UTF-8 up to its
 *   first zero byte. The program's standard input stays open and empty, unless a file is set.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT QProcessHandler
{
public:
    /*! \brief A handler with 30 seconds for either time-out. */
    QProcessHandler();
    virtual ~QProcessHandler();

    /*!
     * \brief Runs \a program with \a arguments and waits for its end.
     *
     * \return the exit code, also after a crash (see getLastExitStatus()); -1 when the program did
     *         not start or did not end in time. A program that did not end is left running, and
     *         until it ends another one cannot be started: the next call then waits for the old
     * one.
     *
     * Warns "Timeout on starting command " or "Timeout from command ", each with the program, its
     * arguments, and what it wrote so far, which is then no longer part of the kept output.
     */
    int startProcess(const QString& program, const QStringList& arguments);

    /*! \brief The limit for the program's start; a negative one is none. */
    void setWaitForStartedTimeout(int milliseconds);
    /*! \brief The limit for the program's end; a negative one is none. */
    void setWaitForFinishedTimeout(int milliseconds);

    /*! \brief The file that all later programs read as their standard input. */
    void setStandardInputFile(const QString& fileName);
    /*! \brief The working directory of all later programs. */
    void setWorkingDirectory(const QString& directory);

    /*! \brief What the last program wrote on its standard output. */
    QString getStandardOutput() const;
    /*! \brief What the last program wrote on its standard error. */
    QString getStandardError() const;
    /*!
     * \brief How the last program ended: a QProcess::ExitStatus, 0 by itself, 1 by a crash.
     *
     * 1 before the first run. For a program that still runs it is what QProcess says.
     */
    int getLastExitStatus() const;

    /*! \brief Forgets the kept output; the exit status becomes 1. */
    void clearLastStates();
    /*! \brief Keeps the output that is there to be read, and the exit status. */
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
