#include "VersionManager.h"

#include "common/Log.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

VersionManager::VersionManager(const QString& version) : m_isOldVersion(false)
{
    initializeVersions(version);
}

VersionManager::~VersionManager() = default;

QString VersionManager::getMainVersion() const
{
    return m_mainVersion;
}

QString VersionManager::getBaseNumber() const
{
    return m_baseNumber;
}

QString VersionManager::getMajorIndex() const
{
    return m_majorIndex;
}

QString VersionManager::getMinorIndex() const
{
    return m_minorIndex;
}

QString VersionManager::getTestIndex() const
{
    if (!m_isOldVersion) {
        MISCTOOLS_LOG(VersionManager).warning() << "Test index exist only in old version.";
    }
    return m_testIndex;
}

QString VersionManager::getPatchVersion() const
{
    if (m_isOldVersion) {
        MISCTOOLS_LOG(VersionManager).warning() << "Patch version exist only in new version.";
    }
    return m_patchVersion;
}

QString VersionManager::getBuildNumber() const
{
    if (m_isOldVersion) {
        MISCTOOLS_LOG(VersionManager).warning() << "Build number exist only in new version.";
    }
    return m_buildNumber;
}

QString VersionManager::getGitHash() const
{
    if (m_isOldVersion) {
        MISCTOOLS_LOG(VersionManager).warning() << "Git hash exist only in new version.";
    }
    return m_gitHash;
}

bool VersionManager::isOldVersion() const
{
    return m_isOldVersion;
}

bool VersionManager::isOldVersion(const QString& version)
{
    const int dots = version.count(QLatin1Char('.'));
    if (dots == 2) {
        return true;
    }
    if (dots != 4) {
        MISCTOOLS_LOG(VersionManager).warning()
            << "Number of dots" << dots << "in version not allowed:" << version;
    }
    return false;
}

void VersionManager::initializeVersions(const QString& version)
{
    m_isOldVersion = isOldVersion(version);
    if (m_isOldVersion) {
        initializeVersionsOld(version);
    } else {
        initializeVersionsNew(version);
    }
}

void VersionManager::initializeVersionsOld(const QString& version)
{
    // Compiled once; match() is thread-safe.
    static const QRegularExpression expression(getRegularExpressionVersion());
    const QRegularExpressionMatch match = expression.match(version);
    if (!match.hasMatch()) {
        MISCTOOLS_LOG(VersionManager).warning()
            << "Can not convert the following version:" << version;
        return;
    }
    m_mainVersion = match.captured(1);
    m_baseNumber = match.captured(2);
    m_majorIndex = match.captured(3);
    m_minorIndex = match.captured(4);
    m_testIndex = match.captured(5);
}

void VersionManager::initializeVersionsNew(const QString& version)
{
    const QStringList versionAndHash = version.split(QLatin1Char('-'));
    m_mainVersion = versionAndHash.first();
    m_gitHash = versionAndHash.mid(1).join(QLatin1Char('-'));

    // Fields without a part in the version remain unchanged.
    QString* const fields[] = {&m_baseNumber, &m_majorIndex, &m_minorIndex, &m_patchVersion,
                               &m_buildNumber};
    const QStringList parts = m_mainVersion.split(QLatin1Char('.'));
    int i = 0;
    for (QString* const field : fields) {
        if (i == parts.size()) {
            break;
        }
        *field = parts.at(i);
        ++i;
    }
}

const QString& VersionManager::getRegularExpressionVersion()
{
    static const QString expression =
        QStringLiteral(R"(V?((\S*)\.(\d{1,2})\.(\d{1,2}))\-?(\d{1,3})?)");
    return expression;
}
