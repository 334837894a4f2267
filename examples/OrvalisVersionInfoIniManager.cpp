// Reads the application's version and product code from /orvalis/etc/OrvalisVersionInfo.ini.

#include <OrvalisVersionInfoIniManager.h>

#include <cstdio>

int main()
{
    //! [info]
    const OrvalisVersionInfoIniManager info; // logs a warning if there is no such file
    std::printf("application %s\n", qPrintable(info.getApplicationVersion()));
    std::printf("product code %s\n", qPrintable(info.getProductCode()));
    //! [info]

    // The file must have this key in a section that is written [%General]. In the INI dialect of
    // Qt, [General] means the keys outside every section.
    std::printf("created on %s, key \"%s\"\n", qPrintable(info.getCreationDate()),
                qPrintable(OrvalisVersionInfoIniManager::getKeyCreationDate()));
    return 0;
}
