#ifndef MISCTOOLS_TEXTFILEPARSER_H
#define MISCTOOLS_TEXTFILEPARSER_H

#include "MiscToolsGlobal.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QString>
#include <QtCore/QStringList>

/*!
 * \brief Matches regular expressions against the text of a file.
 *
 * Use it for text files that fit in memory and have no dedicated parser; for INI files use
 * IniFileManager instead. Do not use it for binary files: the text ends at the first zero byte. For
 * expressions or files from an untrusted source, observe the limits below.
 *
 * \snippet TextFileParser.cpp match
 *
 * \par Contract
 * - **Threads:** reentrant; one object must not be used in two threads at a time.
 * - **Ownership:** the constructor reads the entire file and closes it; later changes to the file
 *   are not seen. Copies are independent.
 * - **Errors:** nothing throws. Each error sets hasError() and replaces getLastError(); only
 *   clearLastError() resets them. The object remains usable: without a file, the text is empty.
 * - **Log messages:** one warning for each error; see
 *   \ref log-messages-textfileparser "log messages of TextFileParser".
 * - **Units and formats:** the text is decoded as UTF-8 up to its first zero byte, without carriage
 *   returns. Expressions are those of QRegularExpression.
 * - **Limits:** the file is held in memory, as bytes while it is read and then as a QString; a file
 *   of 2 GiB or more counts as empty, as with QIODevice::readAll(). The number of steps of a search
 *   is limited for each position where a match may start, not for the whole text: a bad expression
 *   may take minutes on a long text. Begin the expression with "(*LIMIT_MATCH=10000)" for a
 *   lower limit.
 *
 * \sa \ref programs, \ref gotchas, \ref security
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

    /*! \brief Copies the text and the last error. */
    TextFileParser(const TextFileParser&) = default;
    /*! \brief Copies the text and the last error. */
    TextFileParser& operator=(const TextFileParser&) = default;

    /*!
     * \brief Returns the first result of multiMatch(); a null string if there is none.
     *
     * Errors: those of multiMatch().
     */
    QString match(const QRegularExpression& regularExpression);

    /*!
     * \brief Returns one string for each match, in the order of the file.
     *
     * The string is the capture of the expression's first group, which may be empty; it is the
     * whole match if the expression has no group or no group took part in the match.
     *
     * Errors: "Invalid regular expresion: <pattern>", then "Invalid match on expresion: <pattern>".
     * If the search for the first match exceeds the limit of steps, the second error alone; if the
     * search for a later match does, the list ends without an error.
     */
    QStringList multiMatch(const QRegularExpression& regularExpression);

    /*!
     * \brief Returns all matches in the text; an invalid iterator if the expression is invalid.
     *
     * Error: "Invalid regular expresion: <pattern>".
     */
    QRegularExpressionMatchIterator internallMatch(const QRegularExpression& regularExpression);

    /*! \brief Returns true after an error, until clearLastError() is called. */
    bool hasError() const;
    /*! \brief Returns the message of the last error. */
    QString getLastError() const;
    /*! \brief Clears the last error. */
    void clearLastError();
    /*! \brief Sets the last error to \a error and logs it as a warning. */
    void setError(const QString& error);

private:
    bool m_hasError;
    QString m_lastError;
    QString m_content;
};

#endif
