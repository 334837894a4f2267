#ifndef MISCTOOLS_HASHGENERATOR_H
#define MISCTOOLS_HASHGENERATOR_H

#include "MiscToolsGlobal.h"

#include <QtCore/QByteArray>
#include <QtCore/QCryptographicHash>
#include <QtCore/QString>
#include <QtCore/QVariant>

/*!
 * \file
 * \brief Cryptographic digests of files, and a fast hash of strings.
 */

/*!
 * \brief Computes cryptographic digests of files.
 *
 * Use it to compare text files: carriage returns are ignored, so that a text has the same digest
 * with any line endings. Do not use it to compare with the digests of other programs unless the
 * file has no carriage returns, nor for files that do not fit in memory.
 *
 * \snippet HashGenerator.cpp digest
 *
 * \par Contract
 * - **Threads:** thread-safe.
 * - **Ownership:** the class has no state; results are copies.
 * - **Errors:** nothing throws. A file that cannot be opened returns a null array. If reading fails
 *   in the middle of the file, the digest is that of the bytes read so far.
 * - **Log messages:** \ref log-messages-hashgenerator "log messages of HashGenerator".
 * - **Units and formats:** a digest is raw bytes, not hexadecimal text.
 *
 * \sa \ref hashes, \ref gotchas
 * \since 1.0
 */
class MISCTOOLS_EXPORT HashGenerator
{
public:
    HashGenerator();
    virtual ~HashGenerator();

    /*!
     * \brief Returns the digest of the file at \a filePath, without its carriage returns.
     *
     * An empty file has the digest of no data. If the file cannot be opened, returns a null array
     * and warns "Can't find file:", the path, "!", or "Can't open file:", the path and the reason.
     */
    static QByteArray createHashFromFile(const QString& filePath,
                                         const QCryptographicHash::Algorithm& algorithm);
};

/*!
 * \brief Returns the 32-bit FNV-1a hash of the zero-terminated string \a text.
 *
 * Use it as a key in hash tables, not for security. Thread-safe; logs nothing. The algorithm:
 * http://www.isthe.com/chongo/tech/comp/fnv/
 *
 * \sa \ref hashes
 * \since 1.0
 */
MISCTOOLS_EXPORT uint hashFromString(const char* text);

/*!
 * \brief Returns the hash of \a value, converted to a string in UTF-8, up to its first zero byte.
 *
 * Returns 0 for an invalid variant and for a type that cannot be converted to a string.
 * Thread-safe; logs nothing.
 *
 * \sa \ref hashes
 * \since 1.0
 */
MISCTOOLS_EXPORT uint hashFromString(const QVariant& value);

#endif
