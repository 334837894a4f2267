#ifndef MISCTOOLS_MEDIAWATCHER_H
#define MISCTOOLS_MEDIAWATCHER_H

#include "MiscToolsGlobal.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

/*!
 * \brief Finds files on a medium that was just mounted.
 *
 * Use it for small media: connect its slot to the signal that reports a mount. It does not detect
 * mounts itself, and it searches in the calling thread. For a large medium, use
 * RecursiveFileSearchWorkerThread in a thread pool instead.
 *
 * \snippet MediaWatcher.cpp search
 *
 * \par Contract
 * - **Threads:** reentrant; the search blocks the calling thread. The signal may be connected
 *   across threads: the constructor registers the meta-type "QFileInfoList".
 * - **Ownership:** the parent owns the watcher, as with any QObject.
 * - **Errors:** nothing throws; a missing medium has no files.
 * - **Log messages:** none.
 * - **Units and formats:** patterns are wildcards such as "*.mp3"; without patterns, every name
 *   matches.
 *
 * \sa \ref files, \ref gotchas
 * \since 1.0
 */
class MISCTOOLS_EXPORT MediaWatcher : public QObject
{
    Q_OBJECT

public:
    /*!
     * \brief Creates a watcher owned by \a parent, which may be null; not recursive, without
     *        patterns.
     */
    MediaWatcher(QObject* parent);
    ~MediaWatcher() override;

    /*!
     * \brief Sets whether to search all directories of a medium, or its top directory alone.
     *
     * The default is false.
     */
    void setRecursive(bool recursive);

    /*! \brief Sets the wildcard patterns of the names to search for. */
    void setFileMatchPatternList(const QStringList& patterns);

Q_SIGNALS:
    /*!
     * \brief The search has found \a fileInfoList, which is never empty.
     *
     * The list contains files and directories. A recursive search returns them in the order of the
     * file system; a search of the top directory sorts them by name, ignoring case. Hidden entries
     * are omitted. "." and ".." are included if a pattern matches them or there are no patterns,
     * even if the medium is otherwise empty.
     */
    void filesFound(const QFileInfoList& fileInfoList);

public Q_SLOTS:
    /*!
     * \brief Searches the medium at \a strMountPath.
     *
     * Emits filesFound() before it returns, unless no entry matches.
     */
    void mediumMounted(const QString& strMountPath);

private:
    QStringList m_fileMatchPatternList;
    bool m_recursive;
};

#endif
