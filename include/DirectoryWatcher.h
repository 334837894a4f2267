#ifndef MISCTOOLS_DIRECTORYWATCHER_H
#define MISCTOOLS_DIRECTORYWATCHER_H

#include "MiscToolsGlobal.h"

#include <QtCore/QFileSystemWatcher>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTimer>

/*!
 * \brief Watches directories and reports their changes in bursts.
 *
 * Use it to react once to many changes, for example after a thousand files were copied into a
 * directory. Every change restarts a delay; when the delay passes without another change, one
 * signal reports all changes of the burst. Do not use it to observe the content of files or an
 * entire directory tree: changes of content and of subdirectories are not reported.
 *
 * \snippet DirectoryWatcher.cpp watch
 *
 * \par Contract
 * - **Threads:** reentrant; all members must be used in the object's thread, which must run an
 *   event loop.
 * - **Ownership:** the object owns its watches and its timer; destroying it discards a burst that
 *   has not been reported. A receiver of its signal must not delete it; use deleteLater() there.
 * - **Errors:** nothing throws. A path that cannot be watched is skipped; only addPath() reports
 *   it.
 * - **Log messages:** none. Qt may log why a path cannot be watched, and warns about an empty path.
 * - **Units and formats:** the delay is in milliseconds, accurate to about 5 %. A directory changes
 *   when an entry is added, removed or renamed or when its permissions change, not when the content
 *   of a file changes. A stream of changes that never pauses for the delay is never reported. A
 *   directory that is itself renamed is still watched, and reported under its old name.
 *
 * \sa \ref files, \ref gotchas
 * \since 1.0
 */
class MISCTOOLS_EXPORT DirectoryWatcher : public QObject
{
    Q_OBJECT

public:
    /*! \brief Watches \a paths; an empty list watches nothing yet. */
    DirectoryWatcher(const QStringList& paths);
    /*! \brief Watches \a path. */
    DirectoryWatcher(const QString& path);
    ~DirectoryWatcher() override;

    /*! \brief Watches \a path as well. Returns true if it can be watched. */
    bool addPath(const QString& path);
    /*! \brief Watches \a paths as well; those that cannot be watched are skipped. */
    void addPaths(const QStringList& paths);

    /*!
     * \brief Sets the delay in milliseconds; the default is 1000.
     *
     * A burst that has begun keeps its delay; the new one applies from the next burst on. Do not
     * set a negative delay: no burst would ever end, and no later delay would take effect.
     */
    void setDelayInMs(int delayInMs);

Q_SIGNALS:
    /*!
     * \brief A burst has ended: \a changedDirectories changed, in the order of their changes.
     *
     * A directory that changed several times is listed several times. Changes that are detected
     * while this signal is delivered are lost: the burst that they begin reports an empty list, and
     * receivers that have not been called yet see only these changes in the list.
     */
    void directoryChanged(const QStringList& changedDirectories);

public Q_SLOTS:
    /*! \brief Records a change of \a strPath and restarts the delay. */
    void directoryGotChanged(const QString& strPath);
    /*! \brief Ends the burst and emits directoryChanged(). */
    void delayTimeout();

private:
    QFileSystemWatcher m_fileSystemWatcher;
    QTimer m_delayTimer;
    int m_delayInMs;
    QStringList m_changedDirectories;
};

#endif
