#ifndef MISCTOOLS_RAUCSYSTEMCONFIGINIMANAGER_H
#define MISCTOOLS_RAUCSYSTEMCONFIGINIMANAGER_H

#include "IniFileManager.h"
#include "MiscToolsGlobal.h"

#include <QtCore/QString>

/*!
 * \brief Reads the device index from the update service's configuration, /etc/rauc/system.conf.
 *
 * Use it for the device index alone; for other settings of the file, use IniFileManager instead.
 * Do not use it to tell whether the device has an index: a missing one and an index of 0 look the
 * same.
 *
 * \snippet RaucSystemConfigIniManager.cpp index
 *
 * \par Contract
 * - **Threads:** thread-safe; every call locks the object.
 * - **Ownership:** the object owns its IniFileManager and cannot be copied; results are copies.
 * - **Errors:** nothing throws. A missing file is never created; an index that is missing or is not
 *   a number is "0".
 * - **Log messages:** those of IniFileManager: one warning at construction if there is no file, and
 *   one for each missing or invalid index (see IniFileManager::getValueInteger()).
 * - **Units and formats:** the index is a decimal number as a string.
 *
 * \sa \ref versions, \ref log-messages-inifilemanager "log messages of IniFileManager"
 * \since 1.0
 */
class MISCTOOLS_EXPORT RaucSystemConfigIniManager
{
public:
    /*! \brief Opens the file; warns if there is none. */
    RaucSystemConfigIniManager();
    virtual ~RaucSystemConfigIniManager();

    /*! \brief Returns the device index: the number under "compatible" in "system". */
    QString getDeviceIndex() const;

private:
    IniFileManager m_iniFileManager;
};

#endif
