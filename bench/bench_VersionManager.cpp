#include "VersionManager.h"
#include "support/Program.h"

#include <QtCore/QVersionNumber>

namespace {

void addOldFormat(Contenders& contenders)
{
    const QString version = QStringLiteral("V8.12.3-45");
    contenders.subject([version] { return VersionManager(version); },
                       [](const VersionManager& result) {
                           return result.isOldVersion() &&
                                  result.getMainVersion() == QStringLiteral("8.12.3") &&
                                  result.getBaseNumber() == QStringLiteral("8") &&
                                  result.getMajorIndex() == QStringLiteral("12") &&
                                  result.getMinorIndex() == QStringLiteral("3") &&
                                  result.getTestIndex() == QStringLiteral("45");
                       });
    contenders
        .peer(
            QStringLiteral("QVersionNumber::fromString"),
            [version = QStringLiteral("8.12.3-45")] { return QVersionNumber::fromString(version); },
            equals(QVersionNumber(8, 12, 3)))
        .atMost(8);
}

void addNewFormat(Contenders& contenders)
{
    const QString version = QStringLiteral("8.100.2.7.1234-g1a2b3c");
    contenders.subject([version] { return VersionManager(version); },
                       [](const VersionManager& result) {
                           return !result.isOldVersion() &&
                                  result.getMainVersion() == QStringLiteral("8.100.2.7.1234") &&
                                  result.getPatchVersion() == QStringLiteral("7") &&
                                  result.getBuildNumber() == QStringLiteral("1234") &&
                                  result.getGitHash() == QStringLiteral("g1a2b3c");
                       });
    contenders.peer(
        QStringLiteral("QVersionNumber::fromString"),
        [version] { return QVersionNumber::fromString(version); },
        equals(QVersionNumber({8, 100, 2, 7, 1234})));
}

Operations operations()
{
    return {
        Operation(QStringLiteral("old format"), addOldFormat).inTable().counted(100),
        Operation(QStringLiteral("new format"), addNewFormat).inTable().counted(100),
    };
}

} // namespace

int main(int argc, char* argv[])
{
    return Program::run(argc, argv, operations());
}
