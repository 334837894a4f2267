#ifndef MISCTOOLS_EXPORTFILENAMECREATOR_H
#define MISCTOOLS_EXPORTFILENAMECREATOR_H

#include "MiscToolsGlobal.h"

#include <QtCore/QString>

/*!
 * \brief Creates names for files that the device exports.
 *
 * A name contains the device index and the local time, so that files from different devices and
 * times do not collide: V3_2026_11_15T09_37_12.csv. Do not use it for files that are created more
 * often than once a second: their names would be equal.
 *
 * \snippet ExportFileNameCreator.cpp name
 *
 * \par Contract
 * - **Threads:** thread-safe.
 * - **Ownership:** the class has no state; results are copies.
 * - **Errors:** nothing throws. Without a readable device index the name contains 0.
 * - **Log messages:** those of RaucSystemConfigIniManager.
 * - **Units and formats:** local time with a resolution of one second.
 *
 * \sa RaucSystemConfigIniManager, \ref versions, \ref formats
 * \since 1.0
 */
class MISCTOOLS_EXPORT ExportFileNameCreator
{
public:
    ExportFileNameCreator();
    virtual ~ExportFileNameCreator();

    /*!
     * \brief Returns the name, without a directory, of a file that is exported now.
     *
     * \param extension inserted unchanged after the last dot; if it is empty, the name ends in the
     *                  dot
     */
    static QString create(const QString& extension);
};

#endif
