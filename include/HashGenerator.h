#ifndef MISCTOOLS_HASHGENERATOR_H
#define MISCTOOLS_HASHGENERATOR_H

#include "MiscToolsGlobal.h"

#include <QtCore/QByteArray>
#include <QtCore/QCryptographicHash>
#include <QtCore/QString>
#include <QtCore/QVariant>

/*!
 * \file
 * \brief Digests of files, and a fast hash of texts.
 */

/*!
 * \brief Digests of files.
 *
 * \snippet HashGenerator.cpp digest
 *
 * \par Contract
 * - **Threads:** may be called from any thread.
 * - **Ownership:** nothing is kept.
 * - **Errors:** nothing throws; a file that cannot be opened is warned of and gives a null array.
 *   One that breaks off while it is read gives the digest of what was read.
 * - **Units and formats:** a digest is raw bytes, not hexadecimal text. The file is read whole, in
 *   text mode: carriage returns do not count, so that a text has one digest whatever its line ends.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT HashGenerator
{
public:
    HashGenerator();
    virtual ~HashGenerator();

    /*!
     * \brief The digest of the file at \a filePath, without its carriage returns.
     *
     * An empty file has the digest of no data. Warns "Can't find file:", the path, "!", or "Can't
     * open file:", the path and the reason.
     */
    static QByteArray createHashFromFile(const QString& filePath,
                                         const QCryptographicHash::Algorithm& algorithm);
};

/*!
 * \brief The 32-bit FNV-1a hash of the bytes of \a text before its terminating zero.
 *
 * A key for tables, not a protection. The algorithm: http://www.isthe.com/chongo/tech/comp/fnv/
 * \since 1.0
 */
MISCTOOLS_EXPORT uint hashFromString(const char* text);

/*!
 * \brief As above, of the text of \a value in UTF-8, up to its first zero byte.
 *
 * 0 for an invalid variant, and for one of a type that has no text.
 * \since 1.0
 */
MISCTOOLS_EXPORT uint hashFromString(const QVariant& value);

#endif
