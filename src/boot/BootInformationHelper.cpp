#include "BootInformationHelper.h"

#include "KernelCommandLineDefinition.h"
#include "KernelCommandLineParser.h"
#include "PlatformFunctions.h"
#include "common/DirectoryFlush.h"
#include "common/Log.h"

#include <QtCore/QFile>

namespace {

const QString firstBootMarkerName = QStringLiteral("orvalis-first-boot");
const QString firmwareUpdateMarkerDirectory = QStringLiteral("/orvalis/etc/");
const QString firmwareUpdateMarkerPath = firmwareUpdateMarkerDirectory + firstBootMarkerName;
const QString rebootMarkerPath = QStringLiteral("/orvalis-reboot");

} // namespace

BootInformationHelper::BootInformationHelper() = default;

BootInformationHelper::~BootInformationHelper() = default;

bool BootInformationHelper::isHardReset() const
{
    if (QFile::exists(rebootMarkerPath)) {
        return false;
    }
    // The only product that can detect a hard reset.
    return DeviceManifestManager::getProductCode() == QLatin1String("640917");
}

bool BootInformationHelper::isFactoryReset() const
{
    return KernelCommandLineParser().getValue(KernelCommandLineDefinition::getKeyOrvalisMode()) ==
           KernelCommandLineDefinition::getValueOrvalisModeFactoryReset();
}

BootInformationHelper::BootMode BootInformationHelper::getCurrentBootMode() const
{
    if (isHardReset()) {
        return BootModeHardReset;
    }
    if (QFile::exists(firmwareUpdateMarkerPath)) {
        return BootModeFirmwareUpdate;
    }
    if (isFactoryReset()) {
        return BootModeFactoryReset;
    }
    return BootModeNormal;
}

void BootInformationHelper::deleteFirmwareUpdateMarker() const
{
    if (!QFile::exists(firmwareUpdateMarkerPath)) {
        MISCTOOLS_LOG(BootInformationHelper).warning()
            << "Unable to delete firmware update marker, file does not exist!";
        return;
    }
    if (!QFile::remove(firmwareUpdateMarkerPath)) {
        MISCTOOLS_LOG(BootInformationHelper).warning()
            << "Error on removing firmware update marker!";
        return;
    }
    flushDirectory(firmwareUpdateMarkerDirectory);
}

void BootInformationHelper::deleteOrvalisRebootMarker() const
{
    if (!QFile::exists(rebootMarkerPath)) {
        return;
    }
    if (!QFile::remove(rebootMarkerPath)) {
        MISCTOOLS_LOG(BootInformationHelper).warning()
            << "Unable to remove file:" << rebootMarkerPath;
        return;
    }
    flushDirectory(QStringLiteral("/"));
}
