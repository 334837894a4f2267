#ifndef MISCTOOLS_RAUCSYSTEMCONFIGINIMANAGER_H
#define MISCTOOLS_RAUCSYSTEMCONFIGINIMANAGER_H

#include "IniFileManager.h"
#include "MiscToolsGlobal.h"

#include <QtCore/QString>

/*!
 * \brief Reads the device index from the update service's /etc/rauc/system.conf.
 *
 * \snippet RaucSystemConfigIniManager.cpp index
 *
 * \par Contract
 * - **Threads:** one object may be shared; every call locks it.
 * - **Ownership:** the object owns its IniFileManager; it cannot be copied.
 * - **Errors:** nothing throws. A missing file is warned of at construction and is never created; a
 *   missing or unreadable index is "0", with the warnings of IniFileManager::getValueInteger().
 * - **Units and formats:** the index is a decimal number as text.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT RaucSystemConfigIniManager
{
public:
    /*! \brief Opens the file. */
    RaucSystemConfigIniManager();
    virtual ~RaucSystemConfigIniManager();

    /*! \brief The device index: the number under "compatible" in "system". */
    QString getDeviceIndex() const;

private:
    IniFileManager m_iniFileManager;
};

#endif
