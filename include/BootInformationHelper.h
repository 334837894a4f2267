#ifndef MISCTOOLS_BOOTINFORMATIONHELPER_H
#define MISCTOOLS_BOOTINFORMATIONHELPER_H

#include "MiscToolsGlobal.h"

/*!
 * \brief Returns how the device has booted, and removes the boot markers.
 *
 * Use it at the start of an application to distinguish a normal boot from a factory reset, a hard
 * reset and the first boot after a firmware update. For other arguments of the kernel use
 * KernelCommandLineParser. The markers are two files: /orvalis-reboot exists after a reboot,
 * /orvalis/etc/orvalis-first-boot at the first boot after a firmware update.
 *
 * \snippet BootInformationHelper.cpp mode
 *
 * \par Contract
 * - **Threads:** thread-safe, as objects have no state. If someone else removes a marker at the
 * same time, its removal may be reported as failed.
 * - **Ownership:** nothing is cached; every call checks the files again.
 * - **Durability:** a removed marker does not reappear after a power cut.
 * - **Errors:** nothing throws.
 * - **Log messages:** only for a marker that cannot be removed; see
 *   \ref log-messages-bootinformationhelper "log messages of BootInformationHelper".
 * - **Units and formats:** the product code comes from the platform function
 *   DeviceManifestManager::getProductCode().
 *
 * \sa \ref boot, KernelCommandLineParser
 * \since 1.0
 */
class MISCTOOLS_EXPORT BootInformationHelper
{
public:
    /*! \brief The boot modes. */
    enum BootMode : int
    {
        BootModeNormal = 0,         /*!< None of the following. */
        BootModeFirmwareUpdate = 1, /*!< First boot after a firmware update. */
        BootModeFactoryReset = 2,   /*!< The command line requests a factory reset. */
        BootModeHardReset = 3       /*!< Boot after a hard reset. */
    };

    BootInformationHelper();
    virtual ~BootInformationHelper();

    /*!
     * \brief Returns true if the device booted after a hard reset.
     *
     * This is the case if the reboot marker is missing, on the product "640917" only. The platform
     * function for the product code is called only if the marker is missing.
     */
    bool isHardReset() const;

    /*!
     * \brief Returns true if the kernel command line contains orvalismode=factoryreset.
     *
     * The last argument includes the trailing line feed (see KernelCommandLineParser), so
     * "orvalismode=factoryreset" is not recognized as the last argument; the boot loader must
     * append another one. A missing or unreadable command line logs a warning and returns false.
     */
    bool isFactoryReset() const;

    /*!
     * \brief Returns the boot mode: hard reset before firmware update before factory reset, normal
     * if none applies.
     */
    BootMode getCurrentBootMode() const;

    /*!
     * \brief Removes the marker of the firmware update.
     *
     * Logs "Unable to delete firmware update marker, file does not exist!" or "Error on removing
     * firmware update marker!" if it fails.
     */
    void deleteFirmwareUpdateMarker() const;

    /*!
     * \brief Removes the marker of the reboot; does nothing if there is none.
     *
     * Logs "Unable to remove file:" with the path if the marker cannot be removed.
     */
    void deleteOrvalisRebootMarker() const;
};

#endif
