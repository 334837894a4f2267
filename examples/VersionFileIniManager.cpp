// Reads the device's software version from /orvalis/VersionFile.ini.

#include <VersionFileIniManager.h>

#include <cstdio>

int main()
{
    //! [version]
    const VersionFileIniManager versionFile; // logs a warning if there is no such file
    const QString version = versionFile.getMainVersionVersionString();
    if (version.isEmpty()) {
        return 1;
    }
    std::printf("version %s\n", qPrintable(version));
    std::printf("hash %s\n", qPrintable(versionFile.getVersionStringHash()));
    //! [version]

    // The names in the file, for a program that writes it.
    std::printf("from [%s] in %s\n", qPrintable(VersionFileIniManager::getSectionNameMainVersion()),
                qPrintable(VersionFileIniManager::getFileNameVersionFile()));
    return 0;
}
