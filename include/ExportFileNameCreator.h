#ifndef MISCTOOLS_EXPORTFILENAMECREATOR_H
#define MISCTOOLS_EXPORTFILENAMECREATOR_H

#include "MiscToolsGlobal.h"

#include <QtCore/QString>

/*!
 * \brief Makes names for files that the device exports.
 *
 * \snippet ExportFileNameCreator.cpp name
 *
 * A name holds the device's index and the local time, so that files of different devices and
 * moments do not collide: V3_2026_11_15T09_37_12.csv.
 *
 * \par Contract
 * - **Threads:** may be called from any thread.
 * - **Ownership:** nothing is kept.
 * - **Errors:** none of its own; see RaucSystemConfigIniManager for the device index.
 * - **Units and formats:** the local time to the second: two calls within a second give one name.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT ExportFileNameCreator
{
public:
    ExportFileNameCreator();
    virtual ~ExportFileNameCreator();

    /*!
     * \brief The name of a file that is exported now, without a folder.
     *
     * \param extension what follows the name's last dot, as it stands; an empty one leaves the dot
     */
    static QString create(const QString& extension);
};

#endif
