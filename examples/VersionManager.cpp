// Splits a software version into its parts. There are two formats; the number of dots decides.

#include <VersionManager.h>

#include <cstdio>

int main()
{
    //! [parts]
    const VersionManager version(QStringLiteral("8.100.2.7.1234-g1a2b3c"));
    std::printf("%s: base %s, major %s, minor %s\n", qPrintable(version.getMainVersion()),
                qPrintable(version.getBaseNumber()), qPrintable(version.getMajorIndex()),
                qPrintable(version.getMinorIndex()));
    // Only the new format, which has four dots, has these parts.
    std::printf("patch %s, build %s, commit %s\n", qPrintable(version.getPatchVersion()),
                qPrintable(version.getBuildNumber()), qPrintable(version.getGitHash()));
    //! [parts]

    // The old format has two dots. Check the format before you use a part that only one format has.
    const VersionManager old(QStringLiteral("V8.12.3-45"));
    std::printf("%s: base %s, major %s, minor %s\n", qPrintable(old.getMainVersion()),
                qPrintable(old.getBaseNumber()), qPrintable(old.getMajorIndex()),
                qPrintable(old.getMinorIndex()));
    if (old.isOldVersion()) {
        std::printf("test %s\n", qPrintable(old.getTestIndex()));
    }
    // Without this check: a null string, and a warning in the log.
    std::printf("commit <%s>\n", qPrintable(old.getGitHash()));
    return 0;
}
