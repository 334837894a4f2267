#ifndef MISCTOOLS_RECURSIVEFILESEARCHWORKERTHREAD_H
#define MISCTOOLS_RECURSIVEFILESEARCHWORKERTHREAD_H

#include "MiscToolsGlobal.h"

#include <QtCore/QObject>
#include <QtCore/QRunnable>
#include <QtCore/QString>
#include <QtCore/QStringList>

/*!
 * \brief Searches a folder and all below it, as a task for a thread pool.
 *
 * \snippet RecursiveFileSearchWorkerThread.cpp search
 *
 * \par Contract
 * - **Threads:** the library starts none. run() works in the thread that calls it and emits there;
 *   receivers in other threads get the signal through their event loop.
 * - **Ownership:** a thread pool deletes the task after it ran, unless setAutoDelete(false) was
 *   called; otherwise it is the caller's.
 * - **Errors:** nothing throws and nothing is logged; a missing folder has no entries.
 * - **Units and formats:** patterns are wildcards such as "*.csv"; without one every name fits.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT RecursiveFileSearchWorkerThread : public QObject, public QRunnable
{
    Q_OBJECT

public:
    /*! \brief A search for names that fit \a fileMatchPatternList in \a path and below. */
    RecursiveFileSearchWorkerThread(const QString& path, const QStringList& fileMatchPatternList);
    ~RecursiveFileSearchWorkerThread() override;

    /*! \brief Searches, and emits searchFinished(). */
    void run() override;

Q_SIGNALS:
    /*!
     * \brief The search is over; \a result holds the entries' paths relative to the folder.
     *
     * Always emitted, also with an empty list. The entries are those that the string-list overload
     * of searchFilesOnPathRecursive() finds.
     */
    void searchFinished(const QStringList& result);

private:
    QString m_path;
    QStringList m_fileMatchPatternList;
};

#endif
