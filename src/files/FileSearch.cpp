#include "WildcardFilter.h"

#include <QtCore/QDirIterator>

namespace {

const QLatin1Char slash('/');

// A path that contains a NUL names no file. The system reads it, and every path below it, up to the
// NUL: an iterator would find the same directory in itself forever.
bool canNameDirectory(const QString& path)
{
    return !path.contains(QChar::Null);
}

// Qt replaces QDir::NoFilter with QDir::AllEntries. Qt 5.15.2 first evaluates the flag for case
// sensitivity, which NoFilter contains, and would match patterns differently from later versions.
QDir::Filters resolved(QDir::Filters filters)
{
    return filters == QDir::NoFilter ? QDir::AllEntries : filters;
}

// Computes entries' paths relative to the directory that is searched. QDir::relativeFilePath()
// takes longer than finding the entry; usually the result is the rest after the directory's path.
class RelativePaths
{
public:
    explicit RelativePaths(const QString& path)
        : m_directory(path)
        , m_prefixSize(path.endsWith(slash) ? path.size() : path.size() + 1)
        , m_isPlain(path.startsWith(slash) && QDir::cleanPath(path) == path &&
                    QFile::decodeName(QFile::encodeName(path)) == path)
    {
    }

    QString ofEntry(const QString& path) const
    {
        // Except for the entries "." and "..".
        const bool isPrefixed = m_isPlain && !path.endsWith(QLatin1String("/.")) &&
                                !path.endsWith(QLatin1String("/.."));
        return isPrefixed ? path.mid(m_prefixSize) : m_directory.relativeFilePath(path);
    }

private:
    QDir m_directory;
    int m_prefixSize;
    bool m_isPlain; // absolute, clean, and the same after a round trip through the locale's codec
};

} // namespace

void searchFilesOnPathRecursive(const QString& path, const QStringList& nameFilters,
                                QDir::Filters filters, QFileInfoList& result)
{
    if (!canNameDirectory(path)) {
        return;
    }
    QDirIterator entries(path, nameFilters, resolved(filters), QDirIterator::Subdirectories);
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
    if (!canNameDirectory(path)) {
        return;
    }
    const RelativePaths paths(path);
    QDirIterator entries(path, nameFilters, resolved(QDir::NoFilter), QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        result.append(paths.ofEntry(entries.next()));
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
