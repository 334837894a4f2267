#include <ExportFileNameCreator.h>
#include <VersionFileIniManager.h>
#include <VersionManager.h>

#include <cstdio>

int main()
{
    // What this device runs, from /orvalis/VersionFile.ini.
    const VersionManager running(VersionFileIniManager().getMainVersionVersionString());
    std::printf("%s: base %s, major %s, minor %s, patch %s, build %s, commit %s\n",
                qPrintable(running.getMainVersion()), qPrintable(running.getBaseNumber()),
                qPrintable(running.getMajorIndex()), qPrintable(running.getMinorIndex()),
                qPrintable(running.getPatchVersion()), qPrintable(running.getBuildNumber()),
                qPrintable(running.getGitHash()));

    const VersionManager old(QStringLiteral("V8.12.3-45"));
    std::printf("%s: base %s, major %s, minor %s, test %s\n", qPrintable(old.getMainVersion()),
                qPrintable(old.getBaseNumber()), qPrintable(old.getMajorIndex()),
                qPrintable(old.getMinorIndex()), qPrintable(old.getTestIndex()));
    // Asked for what the format does not have: a null text, and a message.
    std::printf("commit <%s>\n", qPrintable(old.getGitHash()));

    const QString name = ExportFileNameCreator::create(QStringLiteral("csv"));
    std::printf("%s\n", qPrintable(name));
    return 0;
}
