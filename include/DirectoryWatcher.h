#ifndef MISCTOOLS_DIRECTORYWATCHER_H
#define MISCTOOLS_DIRECTORYWATCHER_H

#include "MiscToolsGlobal.h"

#include <QtCore/QFileSystemWatcher>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTimer>

/*!
 * \brief Watches folders and reports their changes in bursts.
 *
 * \snippet DirectoryWatcher.cpp watch
 *
 * Every change restarts a delay; when the delay passes without another change, one signal reports
 * all that changed in the meantime. Copying a thousand files into a folder is so one signal.
 *
 * \par Contract
 * - **Threads:** all members belong to the object's thread, which must run an event loop.
 * - **Ownership:** the object owns its watches and its timer; a burst that is not reported yet goes
 *   with it. It must not be deleted by a receiver of its signal; use deleteLater() there.
 * - **Errors:** a path that cannot be watched is passed over; only addPath() tells. Qt itself may
 *   log why, and warns of an empty path.
 * - **Units and formats:** the delay is in milliseconds, kept to about 5 %. A folder changes when
 *   an entry is added, removed or renamed or has its permissions changed, not when the content of a
 *   file changes. A stream of changes that never pauses for the delay is never reported. A folder
 *   that is renamed itself is watched on under the name that it had.
 *
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

    /*! \brief Watches \a path as well; tells whether it can be watched. */
    bool addPath(const QString& path);
    /*! \brief Watches \a paths as well. */
    void addPaths(const QStringList& paths);

    /*!
     * \brief Sets the delay; 1000 ms from the start.
     *
     * A burst that has begun keeps its delay; the next one takes the new one. A negative delay must
     * not be set: no burst would ever end, nor another delay be taken.
     */
    void setDelayInMs(int delayInMs);

Q_SIGNALS:
    /*!
     * \brief A burst is over: \a changedDirectories changed, in the order of their changes.
     *
     * A folder that changed several times is listed several times. Changes that are noticed while
     * this signal is delivered are not kept: the burst that they begin ends with an empty list, and
     * receivers that are still to be called see the list that they left.
     */
    void directoryChanged(const QStringList& changedDirectories);

public Q_SLOTS:
    /*! \brief Notes a change of \a strPath and restarts the delay. */
    void directoryGotChanged(const QString& strPath);
    /*! \brief Reports the burst. */
    void delayTimeout();

private:
    QFileSystemWatcher m_fileSystemWatcher;
    QTimer m_delayTimer;
    int m_delayInMs;
    QStringList m_changedDirectories;
};

#endif
