// Reads the device index from the configuration of the update service, /etc/rauc/system.conf.

#include <RaucSystemConfigIniManager.h>

#include <cstdio>

int main()
{
    //! [index]
    const RaucSystemConfigIniManager config; // logs a warning if there is no such file
    const QString index = config.getDeviceIndex();
    std::printf("device index %s\n", qPrintable(index));
    //! [index]

    // An index that is missing or is not a number is "0", after a warning.
    if (index == QStringLiteral("0")) {
        std::puts("the configuration has no device index");
        return 1;
    }
    return 0;
}
