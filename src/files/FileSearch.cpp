#include "WildcardFilter.h"

#include <QtCore/QDirIterator>

namespace {

const QLatin1Char slash('/');

} // namespace

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
    QDirIterator entries(path, nameFilters, QDir::NoFilter, QDirIterator::Subdirectories);
    const QDir folder(path);
    const bool isPrefix = QDir::isAbsolutePath(path) && QDir::cleanPath(path) == path;
    const int prefixSize = path.endsWith(slash) ? path.size() : path.size() + 1;
    while (entries.hasNext()) {
        const QString entry = entries.next();
        // The entry's path is path, a slash and what is wanted, except for the folders' entries of
        // themselves and of their parents.
        const bool isPlain = isPrefix && !entry.endsWith(QLatin1String("/.")) &&
                             !entry.endsWith(QLatin1String("/.."));
        result.append(isPlain ? entry.mid(prefixSize) : folder.relativeFilePath(entry));
    }
}

QString concatenatePaths(const QString& firstPath, const QString& secondPath)
{
    QString path = firstPath;
    if (!path.endsWith(slash)) {
        path += slash;
    }
    return path + secondPath;
}
