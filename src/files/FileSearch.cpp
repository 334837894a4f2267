#include "WildcardFilter.h"

#include <QtCore/QDirIterator>

void searchFilesOnPathRecursive(const QString& path, const QStringList& nameFilters,
                                QDir::Filters filters, QFileInfoList& result)
{
    QDirIterator entries(path, nameFilters, filters, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        entries.next();
        result.append(entries.fileInfo());
    }
}

void searchFilesOnPathRecursive(const QString& path, const QStringList& nameFilters,
                                QFileInfoList& result)
{
    searchFilesOnPathRecursive(path, nameFilters, QDir::NoFilter, result);
}

void searchFilesOnPathRecursive(const QString& path, const QStringList& nameFilters,
                                QStringList& result)
{
    QFileInfoList entries;
    searchFilesOnPathRecursive(path, nameFilters, entries);
    const QDir folder(path);
    for (const QFileInfo& entry : qAsConst(entries)) {
        result.append(folder.relativeFilePath(entry.filePath()));
    }
}

QString concatenatePaths(const QString& firstPath, const QString& secondPath)
{
    QString path = firstPath;
    if (!path.endsWith(QLatin1Char('/'))) {
        path += QLatin1Char('/');
    }
    return path + secondPath;
}
