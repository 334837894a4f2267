#ifndef MISCTOOLS_RECORDERURLHASHHANDLING_H
#define MISCTOOLS_RECORDERURLHASHHANDLING_H

#include "MiscToolsGlobal.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

/*!
 * \brief Makes a stable identifier, in the shape of a UUID, from a recorder's URL.
 *
 * \snippet RecorderUrlHashHandling.cpp identifier
 *
 * \par Contract
 * - **Threads:** may be called from any thread.
 * - **Ownership:** nothing is kept.
 * - **Errors:** nothing throws and nothing is logged.
 * - **Units and formats:** a hash is the 16 raw bytes of an MD5 digest (RFC 1321). The text has the
 *   shape of RFC 4122, but not its version and variant bits.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT RecorderUrlHashHandling
{
public:
    RecorderUrlHashHandling();
    virtual ~RecorderUrlHashHandling();

    /*! \brief The hash of \a url. */
    static QByteArray createUrlHash(const QByteArray& url);

    /*! \brief The hash of the three parts behind each other, with nothing between them. */
    static QByteArray createUrlHash(const QByteArray& first, const QByteArray& second,
                                    const QByteArray& third);

    /*!
     * \brief The 16 \a bytes as lower-case hexadecimal text in groups of 8-4-4-4-12 digits.
     *
     * Null for any other number of bytes.
     */
    static QString buildUUIDFromByteArray(const QByteArray& bytes);
};

#endif
