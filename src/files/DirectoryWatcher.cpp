#include "DirectoryWatcher.h"

DirectoryWatcher::DirectoryWatcher(const QStringList& paths) : m_delayInMs(1000)
{
    m_delayTimer.setSingleShot(true);
    connect(&m_delayTimer, &QTimer::timeout, this, &DirectoryWatcher::delayTimeout);
    if (!paths.isEmpty()) { // Qt warns about an empty list
        m_fileSystemWatcher.addPaths(paths);
    }
    connect(&m_fileSystemWatcher, &QFileSystemWatcher::directoryChanged, this,
            &DirectoryWatcher::directoryGotChanged);
}

DirectoryWatcher::DirectoryWatcher(const QString& path) : DirectoryWatcher(QStringList(path)) {}

DirectoryWatcher::~DirectoryWatcher() = default;

bool DirectoryWatcher::addPath(const QString& path)
{
    return m_fileSystemWatcher.addPath(path);
}

void DirectoryWatcher::addPaths(const QStringList& paths)
{
    m_fileSystemWatcher.addPaths(paths);
}

void DirectoryWatcher::setDelayInMs(int delayInMs)
{
    m_delayInMs = delayInMs;
}

void DirectoryWatcher::directoryGotChanged(const QString& strPath)
{
    if (!m_delayTimer.isActive()) {
        m_delayTimer.setInterval(m_delayInMs);
        m_changedDirectories.clear();
    }
    m_delayTimer.start();
    m_changedDirectories.append(strPath);
}

void DirectoryWatcher::delayTimeout()
{
    Q_EMIT directoryChanged(m_changedDirectories);
    m_changedDirectories.clear();
}
