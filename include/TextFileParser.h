#ifndef MISCTOOLS_TEXTFILEPARSER_H
#define MISCTOOLS_TEXTFILEPARSER_H

#include "MiscToolsGlobal.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QString>
#include <QtCore/QStringList>

/*!
 * \brief Matches regular expressions over the text of a file.
 *
 * \snippet TextFileParser.cpp match
 *
 * \par Contract
 * - **Threads:** one object, one thread.
 * - **Ownership:** the file is read whole at construction and closed again; what changes later is
 *   not seen.
 * - **Errors:** nothing throws. Each error is a warning, sets hasError() and replaces
 *   getLastError(); only clearLastError() takes that back. The object stays usable: without a file
 *   the text is empty.
 * - **Units and formats:** the text is decoded as UTF-8 up to its first zero byte, without carriage
 *   returns. Expressions are those of QRegularExpression.
 * - **Limits:** the file is held in memory, as bytes while it is read and then as a QString; one of
 *   2 GiB or more counts as empty, as QIODevice::readAll() has it. The steps of a search are
 * limited for each position where a match may start, not for the text, so that a bad expression
 * over a long text may take minutes. One that begins with "(*LIMIT_MATCH=10000)" is given up
 * sooner.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT TextFileParser
{
public:
    /*!
     * \brief Reads the file at \a filePath.
     *
     * Errors: "File doesn't exists: <path>", "Can't open file <path> IO Error: <reason>".
     */
    TextFileParser(const QString& filePath);
    virtual ~TextFileParser();

    /*! \brief An independent copy. */
    TextFileParser(const TextFileParser&) = default;
    /*! \brief Makes this an independent copy. */
    TextFileParser& operator=(const TextFileParser&) = default;

    /*!
     * \brief The first result of multiMatch(); a null text when there is none.
     */
    QString match(const QRegularExpression& regularExpression);

    /*!
     * \brief One text per match, in the order of the file.
     *
     * The text is that of the expression's first group, which may be empty, and the whole match
     * where the expression has no group or none took part.
     *
     * Errors: "Invalid regular expresion: <pattern>", then "Invalid match on expresion: <pattern>".
     * The second one alone where the search for the first match takes too many steps and is given
     * up; a later match that takes too many ends the list without an error.
     */
    QStringList multiMatch(const QRegularExpression& regularExpression);

    /*!
     * \brief All matches over the text; an invalid iterator for an invalid expression.
     *
     * Error: "Invalid regular expresion: <pattern>".
     */
    QRegularExpressionMatchIterator internallMatch(const QRegularExpression& regularExpression);

    /*! \brief Whether there was an error since clearLastError(). */
    bool hasError() const;
    /*! \brief The text of the last error. */
    QString getLastError() const;
    /*! \brief Forgets the error. */
    void clearLastError();
    /*! \brief Notes the error \a error and warns of it. */
    void setError(const QString& error);

private:
    bool m_hasError;
    QString m_lastError;
    QString m_content;
};

#endif
