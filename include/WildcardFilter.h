#ifndef MISCTOOLS_WILDCARDFILTER_H
#define MISCTOOLS_WILDCARDFILTER_H

#include "MiscToolsGlobal.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QRegExp>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

/*!
 * \file
 * \brief The wildcard filter, and functions that search directories and join paths.
 */

/*!
 * \brief Matches file names against several wildcard patterns, such as "*.txt".
 *
 * Use it for names that the program already has. To find the files of a directory, pass the
 * patterns to searchFilesOnPathRecursive() instead. Paths are not supported: pass the bare name.
 *
 * \snippet WildcardFilter.cpp filter
 *
 * \par Contract
 * - **Threads:** thread-safe after construction; one object may be shared between threads.
 * - **Ownership:** copies are independent; the filter keeps its own copy of the patterns.
 * - **Errors:** nothing throws; an empty name matches nothing.
 * - **Log messages:** one warning for each empty name; see
 *   \ref log-messages-wildcardfilter "log messages of WildcardFilter".
 * - **Units and formats:** patterns are those of QRegExp::Wildcard; the whole name must match.
 * - **Limits:** patterns do not backtrack, but in a sequence of consecutive stars each one costs
 *   more than the one before: 254 stars take a considerable part of a second with the longest
 *   possible name, 1000 stars several seconds.
 *
 * \sa \ref files, \ref gotchas
 * \since 1.0
 */
class MISCTOOLS_EXPORT WildcardFilter
{
public:
    /*!
     * \brief Creates a filter for \a patterns; without patterns, it matches nothing.
     *
     * \param patterns the wildcard patterns
     * \param filters  QDir::CaseSensitive (which QDir::NoFilter contains) makes the filter
     *                 case-sensitive; other flags are ignored
     */
    WildcardFilter(const QStringList& patterns, QDir::Filters filters);
    virtual ~WildcardFilter();

    /*! \brief Copies the patterns. */
    WildcardFilter(const WildcardFilter&) = default;
    /*! \brief Copies the patterns. */
    WildcardFilter& operator=(const WildcardFilter&) = default;

    /*!
     * \brief Returns true if the bare name \a fileName matches one of the patterns.
     *
     * For an empty name, returns false and warns "Can't match filter to empty file name:".
     */
    bool matchesFilters(const QString& fileName) const;

private:
    QVector<QRegExp> m_regExps;
};

/*!
 * \brief Appends every entry below the directory \a path, at any depth, to \a result.
 *
 * \param path        the directory; one that does not exist or cannot be read, or whose path
 *                    contains a NUL, has no entries
 * \param nameFilters wildcard patterns of names; an empty list matches every name
 * \param filters     the kinds of entries, as for QDirIterator
 * \param result      is not cleared; entries are in the order of the file system
 *
 * Links to directories are not followed. Thread-safe; nothing throws; logs nothing.
 *
 * \sa \ref files, \ref gotchas
 * \since 1.0
 */
MISCTOOLS_EXPORT void searchFilesOnPathRecursive(const QString& path,
                                                 const QStringList& nameFilters,
                                                 QDir::Filters filters, QFileInfoList& result);

/*!
 * \brief Like the overload with filters, with QDir::NoFilter.
 *
 * This omits hidden entries, ignores case, and includes "." and ".." if a name filter matches them
 * or there are no name filters.
 * \since 1.0
 */
MISCTOOLS_EXPORT void searchFilesOnPathRecursive(const QString& path,
                                                 const QStringList& nameFilters,
                                                 QFileInfoList& result);

/*!
 * \brief Like the overload without filters; appends each entry's path relative to \a path, such as
 *        "sub/file.txt".
 *
 * The path is the one that QDir::relativeFilePath() returns. Pass an absolute \a path: with a
 * relative one other than "." the result is relative to the current directory.
 * \since 1.0
 */
MISCTOOLS_EXPORT void searchFilesOnPathRecursive(const QString& path,
                                                 const QStringList& nameFilters,
                                                 QStringList& result);

/*!
 * \brief Returns \a firstPath and \a secondPath, joined with a "/" unless the first ends in one.
 *
 * Nothing else is changed: with an empty \a firstPath, the result is an absolute path. Thread-safe;
 * logs nothing.
 * \since 1.0
 */
MISCTOOLS_EXPORT QString concatenatePaths(const QString& firstPath, const QString& secondPath);

#endif
