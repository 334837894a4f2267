#include "MediaWatcher.h"

#include "WildcardFilter.h"

MediaWatcher::MediaWatcher(QObject* parent) : QObject(parent), m_recursive(false)
{
    // Once per process: Qt warns if two threads register a list type at the same time.
    static const int type = qRegisterMetaType<QList<QFileInfo>>("QFileInfoList");
    Q_UNUSED(type)
}

MediaWatcher::~MediaWatcher() = default;

void MediaWatcher::setRecursive(bool recursive)
{
    m_recursive = recursive;
}

void MediaWatcher::setFileMatchPatternList(const QStringList& patterns)
{
    m_fileMatchPatternList = patterns;
}

void MediaWatcher::mediumMounted(const QString& strMountPath)
{
    QFileInfoList files;
    if (m_recursive) {
        searchFilesOnPathRecursive(strMountPath, m_fileMatchPatternList, files);
    } else {
        files =
            QDir(strMountPath).entryInfoList(m_fileMatchPatternList, QDir::NoFilter, QDir::NoSort);
    }
    if (!files.isEmpty()) {
        Q_EMIT filesFound(files);
    }
}
