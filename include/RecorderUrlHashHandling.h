#ifndef MISCTOOLS_RECORDERURLHASHHANDLING_H
#define MISCTOOLS_RECORDERURLHASHHANDLING_H

#include "MiscToolsGlobal.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

/*!
 * \brief Derives a stable identifier, formatted as a UUID, from a recorder's URL.
 *
 * Use it where the same URL must have the same identifier on every device and after every restart.
 * Do not use it for security (it is an MD5 digest) or where a reader validates UUIDs.
 *
 * \snippet RecorderUrlHashHandling.cpp identifier
 *
 * \par Contract
 * - **Threads:** thread-safe.
 * - **Ownership:** the class has no state; results are copies.
 * - **Errors:** nothing throws.
 * - **Log messages:** none.
 * - **Units and formats:** a hash is the 16 raw bytes of an MD5 digest (RFC 1321). The identifier
 *   has the format of RFC 4122, but not its version and variant bits.
 *
 * \sa \ref hashes, \ref formats
 * \since 1.0
 */
class MISCTOOLS_EXPORT RecorderUrlHashHandling
{
public:
    RecorderUrlHashHandling();
    virtual ~RecorderUrlHashHandling();

    /*! \brief Returns the hash of \a url. */
    static QByteArray createUrlHash(const QByteArray& url);

    /*! \brief Returns the hash of the three parts, concatenated without separators. */
    static QByteArray createUrlHash(const QByteArray& first, const QByteArray& second,
                                    const QByteArray& third);

    /*!
     * \brief Returns the 16 \a bytes as lower-case hexadecimal digits in groups of 8-4-4-4-12.
     *
     * For any other number of bytes, returns a null string.
     */
    static QString buildUUIDFromByteArray(const QByteArray& bytes);
};

#endif
