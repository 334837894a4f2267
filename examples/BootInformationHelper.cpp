// Queries how the device booted, and removes the boot markers.

#include <BootInformationHelper.h>

#include <cstdio>

namespace {

const char* nameOf(BootInformationHelper::BootMode mode)
{
    switch (mode) {
    case BootInformationHelper::BootModeHardReset:
        return "hard reset";
    case BootInformationHelper::BootModeFirmwareUpdate:
        return "firmware update";
    case BootInformationHelper::BootModeFactoryReset:
        return "factory reset";
    case BootInformationHelper::BootModeNormal:
        break;
    }
    return "normal";
}

} // namespace

int main()
{
    //! [mode]
    const BootInformationHelper boot;
    std::printf("booted: %s\n", nameOf(boot.getCurrentBootMode()));

    // Only the application removes the markers. While the first one exists, later boots count as
    // firmware updates, too; while the second one exists, no boot counts as a hard reset.
    boot.deleteFirmwareUpdateMarker();
    boot.deleteOrvalisRebootMarker();
    std::printf("from now on: %s\n", nameOf(boot.getCurrentBootMode()));
    //! [mode]

    // A second removal finds no file. The library logs that; the program continues.
    boot.deleteFirmwareUpdateMarker();
    return 0;
}
