#include "RecursiveFileSearchWorkerThread.h"

#include "WildcardFilter.h"

RecursiveFileSearchWorkerThread::RecursiveFileSearchWorkerThread(
    const QString& path, const QStringList& fileMatchPatternList)
    : m_path(path), m_fileMatchPatternList(fileMatchPatternList)
{
}

RecursiveFileSearchWorkerThread::~RecursiveFileSearchWorkerThread() = default;

void RecursiveFileSearchWorkerThread::run()
{
    QStringList result;
    searchFilesOnPathRecursive(m_path, m_fileMatchPatternList, result);
    Q_EMIT searchFinished(result);
}
