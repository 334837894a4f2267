#ifndef MISCTOOLS_BOOTINFORMATIONHELPER_H
#define MISCTOOLS_BOOTINFORMATIONHELPER_H

#include "MiscToolsGlobal.h"

/*!
 * \brief Tells how the device has just booted, and removes the markers that say so.
 *
 * \snippet BootInformationHelper.cpp mode
 *
 * Two files are the markers: /orvalis-reboot is there after a reboot,
 * /orvalis/etc/orvalis-first-boot on the first boot after a firmware update.
 *
 * \par Contract
 * - **Threads:** an object holds nothing and may be shared; a marker that somebody else removes
 *   between the look and the removal is reported as one that could not be removed.
 * - **Ownership:** nothing is kept; every question looks anew.
 * - **Errors:** nothing throws; only the removal of a marker warns.
 * - **Units and formats:** the product code comes from the platform function
 *   DeviceManifestManager::getProductCode().
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT BootInformationHelper
{
public:
    /*! \brief How the device booted. */
    enum BootMode : int
    {
        BootModeNormal = 0,         /*!< None of the others. */
        BootModeFirmwareUpdate = 1, /*!< For the first time after a firmware update. */
        BootModeFactoryReset = 2,   /*!< The command line asks for a factory reset. */
        BootModeHardReset = 3       /*!< After a hard reset. */
    };

    BootInformationHelper();
    virtual ~BootInformationHelper();

    /*!
     * \brief Whether the device comes from a hard reset.
     *
     * That is so when the reboot marker is missing, on the product "640917" alone. The platform is
     * asked for the product code only where the marker is missing.
     */
    bool isHardReset() const;

    /*!
     * \brief Whether the kernel command line says orvalismode=factoryreset.
     *
     * The line's last word keeps the line feed that ends the line (see KernelCommandLineParser). As
     * the last word, "orvalismode=factoryreset" therefore asks for nothing; a boot loader must
     * let another word follow. A missing or unreadable command line is warned of and asks for
     * nothing.
     */
    bool isFactoryReset() const;

    /*! \brief A hard reset first, then a firmware update, then a factory reset, else normal. */
    BootMode getCurrentBootMode() const;

    /*!
     * \brief Removes the marker of the firmware update, so that a power cut does not bring it back.
     *
     * Warns "Unable to delete firmware update marker, file does not exist!" or "Error on removing
     * firmware update marker!".
     */
    void deleteFirmwareUpdateMarker() const;

    /*!
     * \brief Removes the marker of the reboot, so that a power cut does not bring it back; says
     * nothing when there is none.
     *
     * Warns "Unable to remove file:" with the path when it cannot be removed.
     */
    void deleteOrvalisRebootMarker() const;
};

#endif
