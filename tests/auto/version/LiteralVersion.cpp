#include "LiteralVersion.h"

#include <QtCore/QDebug>
#include <QtCore/QRegularExpression>

namespace {

QStringList shown(bool isOld, const QStringList& components)
{
    QStringList list(isOld ? QStringLiteral("old") : QStringLiteral("new"));
    for (const QString& component : components) {
        list += component.isNull() ? QStringLiteral("null")
                                   : QLatin1Char('<') + component + QLatin1Char('>');
    }
    return list;
}

} // namespace

void LiteralVersion::read(const QString& version)
{
    const int dots = version.count(".", Qt::CaseSensitive);
    isOld = dots == 2;
    if (dots != 2 && dots != 4) {
        qWarning() << "Number of dots" << dots << "in version not allowed:" << version;
    }
    if (isOld) {
        readOld(version);
    } else {
        readNew(version);
    }
}

void LiteralVersion::readOld(const QString& version)
{
    const QRegularExpression expression("V?((\\S*)\\.(\\d{1,2})\\.(\\d{1,2}))\\-?(\\d{1,3})?");
    const QRegularExpressionMatch match = expression.match(version);
    if (match.hasMatch()) {
        mainVersion = match.captured(1);
        baseNumber = match.captured(2);
        majorIndex = match.captured(3);
        minorIndex = match.captured(4);
        testIndex = match.captured(5);
    } else {
        qWarning() << "Can not convert the following version:" << version;
    }
}

void LiteralVersion::readNew(const QString& version)
{
    QStringList pieces = version.split("-", Qt::KeepEmptyParts);
    mainVersion = pieces.takeFirst();
    gitHash = pieces.join("-");
    const QStringList numbers = mainVersion.split(".", Qt::KeepEmptyParts);
    if (numbers.size() > 0) {
        baseNumber = numbers[0];
    }
    if (numbers.size() > 1) {
        majorIndex = numbers[1];
    }
    if (numbers.size() > 2) {
        minorIndex = numbers[2];
    }
    if (numbers.size() > 3) {
        patchVersion = numbers[3];
    }
    if (numbers.size() > 4) {
        buildNumber = numbers[4];
    }
}

void LiteralVersion::warnAsGetters() const
{
    if (isOld) {
        qWarning() << onlyNewPatch;
        qWarning() << onlyNewBuild;
        qWarning() << onlyNewHash;
    } else {
        qWarning() << onlyOldTest;
    }
}

QStringList componentsOf(const LiteralVersion& version)
{
    version.warnAsGetters();
    return shown(version.isOld,
                 {version.mainVersion, version.baseNumber, version.majorIndex, version.minorIndex,
                  version.testIndex, version.patchVersion, version.buildNumber, version.gitHash});
}

QStringList componentsOf(const VersionManager& version)
{
    const QString mainVersion = version.getMainVersion();
    const QString baseNumber = version.getBaseNumber();
    const QString majorIndex = version.getMajorIndex();
    const QString minorIndex = version.getMinorIndex();
    const QString testIndex = version.getTestIndex();
    const QString patchVersion = version.getPatchVersion();
    const QString buildNumber = version.getBuildNumber();
    const QString gitHash = version.getGitHash();
    return shown(version.isOldVersion(), {mainVersion, baseNumber, majorIndex, minorIndex,
                                          testIndex, patchVersion, buildNumber, gitHash});
}
