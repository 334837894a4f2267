#include <BootInformationHelper.h>
#include <KernelCommandLineParser.h>

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
    const BootInformationHelper boot;
    std::printf("booted: %s\n", nameOf(boot.getCurrentBootMode()));

    // The application has seen it; the next boot is a normal one again.
    boot.deleteFirmwareUpdateMarker();
    boot.deleteOrvalisRebootMarker();
    std::printf("from now on: %s\n", nameOf(boot.getCurrentBootMode()));

    const KernelCommandLineParser arguments;
    std::printf("console <%s>, splash: %s\n",
                qPrintable(arguments.getValue(QStringLiteral("console"))),
                arguments.contains(QStringLiteral("splash")) ? "yes" : "no");

    boot.deleteFirmwareUpdateMarker();
    return 0;
}
