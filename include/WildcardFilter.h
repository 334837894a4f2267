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
 * \brief The wildcard filter, and functions that search folders and join paths.
 */

/*!
 * \brief Tells whether a file's name fits one of several wildcard patterns, such as "*.txt".
 *
 * \snippet WildcardFilter.cpp filter
 *
 * \par Contract
 * - **Threads:** after construction a filter is only read, and may be shared.
 * - **Ownership:** a filter keeps what it needs of the patterns.
 * - **Errors:** nothing throws; an empty name is warned of.
 * - **Units and formats:** patterns as QRegExp::Wildcard has them; the whole name must fit.
 * - **Limits:** no pattern backtracks, but in a row of stars each costs more than the one before:
 *   254 of them take a good part of a second over the longest name, 1000 of them several.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT WildcardFilter
{
public:
    /*!
     * \brief A filter of \a patterns; without any it lets nothing through.
     *
     * \param patterns the wildcard patterns
     * \param filters  with QDir::CaseSensitive (which QDir::NoFilter contains) case counts; no
     *                 other flag has a meaning here
     */
    WildcardFilter(const QStringList& patterns, QDir::Filters filters);
    virtual ~WildcardFilter();

    /*! \brief An independent copy. */
    WildcardFilter(const WildcardFilter&) = default;
    /*! \brief Makes this an independent copy. */
    WildcardFilter& operator=(const WildcardFilter&) = default;

    /*!
     * \brief Whether the bare name \a fileName fits one of the patterns.
     *
     * An empty name fits none and warns "Can't match filter to empty file name:".
     */
    bool matchesFilters(const QString& fileName) const;

private:
    QVector<QRegExp> m_regExps;
};

/*!
 * \brief Appends every entry below the folder \a path, at any depth, to \a result.
 *
 * \param path        the folder; one that does not exist or cannot be read, or whose path has a NUL
 *                    in it, has no entries
 * \param nameFilters wildcard patterns of names; an empty list lets every name through
 * \param filters     what kinds of entries count, as QDirIterator has it
 * \param result      never cleared; entries come in the order of the file system
 *
 * Links to folders are not followed. May be called from any thread; logs nothing.
 * \since 1.0
 */
MISCTOOLS_EXPORT void searchFilesOnPathRecursive(const QString& path,
                                                 const QStringList& nameFilters,
                                                 QDir::Filters filters, QFileInfoList& result);

/*!
 * \brief As above with QDir::NoFilter.
 *
 * That leaves hidden entries out, ignores case, and includes "." and ".." where a name filter lets
 * them through or there is none.
 * \since 1.0
 */
MISCTOOLS_EXPORT void searchFilesOnPathRecursive(const QString& path,
                                                 const QStringList& nameFilters,
                                                 QFileInfoList& result);

/*!
 * \brief As above; appends each entry's path relative to \a path, such as "sub/file.txt".
 *
 * The path is what QDir::relativeFilePath() makes of it: with a relative \a path other than "." it
 * is relative to the current folder, so give an absolute one.
 * \since 1.0
 */
MISCTOOLS_EXPORT void searchFilesOnPathRecursive(const QString& path,
                                                 const QStringList& nameFilters,
                                                 QStringList& result);

/*!
 * \brief Joins \a firstPath and \a secondPath with one "/", unless the first ends in one.
 *
 * Nothing else is changed: an empty \a firstPath makes the result absolute.
 * \since 1.0
 */
MISCTOOLS_EXPORT QString concatenatePaths(const QString& firstPath, const QString& secondPath);

#endif
