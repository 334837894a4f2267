#ifndef MISCTOOLS_RECURSIVEFILESEARCHWORKERTHREAD_H
#define MISCTOOLS_RECURSIVEFILESEARCHWORKERTHREAD_H

#include "MiscToolsGlobal.h"

#include <QtCore/QObject>
#include <QtCore/QRunnable>
#include <QtCore/QString>
#include <QtCore/QStringList>

/*!
 * \brief Searches a directory tree as a task for a thread pool.
 *
 * Use it for large trees, so that the calling thread is not blocked. In a thread that may block,
 * call searchFilesOnPathRecursive() instead. A search cannot be canceled.
 *
 * \snippet RecursiveFileSearchWorkerThread.cpp search
 *
 * \par Contract
 * - **Threads:** the library starts no thread. run() searches in the thread that calls it and emits
 *   the signal there; a receiver in another thread gets it through its event loop.
 * - **Ownership:** a thread pool deletes the task after its run, unless setAutoDelete(false) was
 *   called. Otherwise the caller owns it.
 * - **Errors:** nothing throws; a missing directory has no entries.
 * - **Log messages:** none.
 * - **Units and formats:** patterns are wildcards such as "*.csv"; without patterns, every name
 *   matches.
 *
 * \sa \ref files, \ref gotchas
 * \since 1.0
 */
class MISCTOOLS_EXPORT RecursiveFileSearchWorkerThread : public QObject, public QRunnable
{
    Q_OBJECT

public:
    /*!
     * \brief Creates a search in \a path and all directories below it for names that match
     *        \a fileMatchPatternList.
     */
    RecursiveFileSearchWorkerThread(const QString& path, const QStringList& fileMatchPatternList);
    ~RecursiveFileSearchWorkerThread() override;

    /*! \brief Searches and emits searchFinished(). */
    void run() override;

Q_SIGNALS:
    /*!
     * \brief The search has finished; \a result contains the paths of the entries, relative to the
     *        directory.
     *
     * Always emitted, also with an empty list. The entries are those of the QStringList overload of
     * searchFilesOnPathRecursive().
     */
    void searchFinished(const QStringList& result);

private:
    QString m_path;
    QStringList m_fileMatchPatternList;
};

#endif
