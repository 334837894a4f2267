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
 * \snippet MediaWatcher.cpp search
 *
 * The application tells where; the answer is a signal within the same call.
 *
 * \par Contract
 * - **Threads:** all happens in the caller's thread, which a large medium keeps busy. The signal
 *   may be connected across threads: the type "QFileInfoList" is registered at construction.
 * - **Ownership:** the parent owns the watcher, as QObject has it.
 * - **Errors:** nothing throws and nothing is logged; a missing medium has no files.
 * - **Units and formats:** patterns are wildcards such as "*.mp3"; without one every name fits.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT MediaWatcher : public QObject
{
    Q_OBJECT

public:
    /*! \brief A watcher owned by \a parent, which may be null; not recursive, without patterns. */
    MediaWatcher(QObject* parent);
    ~MediaWatcher() override;

    /*! \brief Whether to search all folders of a medium, or its top folder alone. */
    void setRecursive(bool recursive);

    /*! \brief The patterns of the names to look for. */
    void setFileMatchPatternList(const QStringList& patterns);

Q_SIGNALS:
    /*!
     * \brief The medium holds \a fileInfoList, which is never empty.
     *
     * Files and folders alike; of a whole medium in the order of the file system, of its top folder
     * sorted by name without regard to case. Hidden entries are left out; "." and ".." are in where
     * a pattern lets them through or there is none, even if the medium is empty otherwise.
     */
    void filesFound(const QFileInfoList& fileInfoList);

public Q_SLOTS:
    /*! \brief Searches the medium at \a strMountPath and emits filesFound() if an entry fits. */
    void mediumMounted(const QString& strMountPath);

private:
    QStringList m_fileMatchPatternList;
    bool m_recursive;
};

#endif
