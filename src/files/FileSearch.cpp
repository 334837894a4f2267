#include "WildcardFilter.h"

#include <QtCore/QDirIterator>
#include <QtCore/QTextCodec>

#include <cstring>
#include <memory>

#include <dirent.h>

namespace {

const QLatin1Char slash('/');

// A path with a NUL names nothing. The system reads it up to the NUL, and so each path below it,
// too: an iterator would find the same folder in itself for ever.
bool canNameFolder(const QString& path)
{
    return !path.contains(QChar::Null);
}

// QDir::NoFilter stands for all entries, and Qt puts these in its place; 5.15.2 does so only after
// it has taken the flag for case out of it, and would match patterns otherwise than later versions.
QDir::Filters resolved(QDir::Filters filters)
{
    return filters == QDir::NoFilter ? QDir::AllEntries : filters;
}

// Entries' paths, relative to the folder that is searched.
class RelativePaths
{
public:
    explicit RelativePaths(const QString& path)
        : m_folder(path)
        , m_prefixSize(path.endsWith(slash) ? path.size() : path.size() + 1)
        , m_isPlain(path.startsWith(slash) && QDir::cleanPath(path) == path &&
                    QFile::decodeName(QFile::encodeName(path)) == path)
    {
    }

    // Whether every entry's path is the folder's, a slash, and what is wanted. Folders' entries of
    // themselves and of their parents are the exception.
    bool isPlain() const { return m_isPlain; }

    QString ofEntry(const QString& path) const
    {
        const bool isPrefixed = m_isPlain && !path.endsWith(QLatin1String("/.")) &&
                                !path.endsWith(QLatin1String("/.."));
        return isPrefixed ? withoutPrefix(path) : m_folder.relativeFilePath(path);
    }

    QString withoutPrefix(const QString& path) const { return path.mid(m_prefixSize); }

private:
    QDir m_folder;
    int m_prefixSize;
    bool m_isPlain;
};

// Gives what QDirIterator gives for QDir::NoFilter and no name filters, in the same order: entries
// that are not hidden, whatever name they have in UTF-8, if they are files, folders, or links that
// lead to something. The iterator makes a QFileInfo of each, of which names need nothing.
class NameSearch
{
public:
    NameSearch(const RelativePaths& paths, QStringList& result) : m_paths(paths), m_result(result)
    {
    }

    // In other encodings, different names may be read as the same one, or one name differently.
    static bool isExact(const RelativePaths& paths)
    {
        const int utf8 = 106; // as RFC 3808 numbers the encodings
        return paths.isPlain() && QTextCodec::codecForLocale()->mibEnum() == utf8;
    }

    void addEntries(const QString& folder)
    {
        m_path = folder.toUtf8();
        addEntries();
    }

private:
    Q_DISABLE_COPY(NameSearch)

    // Those of the folder at m_path, which is longer afterwards.
    void addEntries();
    // DT_REG, DT_DIR or DT_LNK if what is at that path is listed, else DT_UNKNOWN.
    static int listedType(int type, const QString& path);

    const RelativePaths& m_paths;
    QStringList& m_result;
    QByteArray m_path;
};

void NameSearch::addEntries()
{
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(m_path.constData()), closedir);
    if (folder == nullptr) {
        return;
    }
    if (!m_path.endsWith('/')) {
        m_path += '/';
    }
    const int prefixSize = m_path.size();
    while (const dirent* entry = readdir(folder.get())) {
        m_path.truncate(prefixSize);
        m_path += entry->d_name;
        const QString path = QString::fromUtf8(m_path);
        if (entry->d_name[0] == '.') {
            if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0) {
                m_result.append(m_paths.ofEntry(path));
            }
            continue;
        }
        const int type = listedType(entry->d_type, path);
        if (type == DT_UNKNOWN || path.toUtf8() != m_path) {
            continue;
        }
        m_result.append(m_paths.withoutPrefix(path));
        if (type == DT_DIR) {
            addEntries();
        }
    }
}

int NameSearch::listedType(int type, const QString& path)
{
    if (type == DT_REG || type == DT_DIR) {
        return type;
    }
    // Not every file system tells the type.
    if (type == DT_LNK || type == DT_UNKNOWN) {
        const QFileInfo info(path);
        if (info.isSymLink()) {
            return info.exists() ? DT_LNK : DT_UNKNOWN;
        }
        if (info.isDir()) {
            return DT_DIR;
        }
        if (info.isFile()) {
            return DT_REG;
        }
    }
    return DT_UNKNOWN;
}

} // namespace

void searchFilesOnPathRecursive(const QString& path, const QStringList& nameFilters,
                                QDir::Filters filters, QFileInfoList& result)
{
    if (!canNameFolder(path)) {
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
    if (!canNameFolder(path)) {
        return;
    }
    const RelativePaths paths(path);
    if (nameFilters.isEmpty() && NameSearch::isExact(paths)) {
        NameSearch(paths, result).addEntries(path);
        return;
    }
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
