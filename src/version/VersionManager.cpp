#include "VersionManager.h"

#include "common/Log.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

#include <algorithm>

namespace {

bool isDigit(QChar character)
{
    return character >= QLatin1Char('0') && character <= QLatin1Char('9');
}

// What \s stands for in an expression without further options.
bool isBlank(QChar character)
{
    return character == QLatin1Char(' ') ||
           (character >= QLatin1Char('\t') && character <= QLatin1Char('\r'));
}

// How many of the characters from begin on are digits, up to limit.
int countDigits(const QString& text, int begin, int limit)
{
    int count = 0;
    while (count < limit && begin + count < text.size() && isDigit(text.at(begin + count))) {
        ++count;
    }
    return count;
}

// Whether the expression for old versions finds in text what readPlainVersion() finds: there are
// just the two dots that it asks for, and no limit of the expression's machinery is near.
bool isPlainVersion(const QString& text)
{
    constexpr int sizeLimit = 256;
    return text.size() <= sizeLimit && text.count(QLatin1Char('.')) == 2 &&
           std::none_of(text.cbegin(), text.cend(), [](QChar c) { return c.isSurrogate(); });
}

struct OldVersion
{
    QString mainVersion;
    QString baseNumber;
    QString majorIndex;
    QString minorIndex;
    QString testIndex;
};

// Does by hand, in a hundredth of the time, what the expression for old versions does.
bool readPlainVersion(const QString& text, OldVersion& version)
{
    const int firstDot = text.indexOf(QLatin1Char('.'));
    const int secondDot = text.lastIndexOf(QLatin1Char('.'));
    const int majorSize = secondDot - firstDot - 1;
    const int minorBegin = secondDot + 1;
    const int minorSize = countDigits(text, minorBegin, 2);
    if (majorSize < 1 || countDigits(text, firstDot + 1, 2) != majorSize || minorSize == 0) {
        return false;
    }

    int begin = firstDot;
    while (begin > 0 && !isBlank(text.at(begin - 1))) {
        --begin;
    }
    if (text.at(begin) == QLatin1Char('V')) {
        ++begin;
    }
    int testBegin = minorBegin + minorSize;
    version.mainVersion = text.mid(begin, testBegin - begin);
    version.baseNumber = text.mid(begin, firstDot - begin);
    version.majorIndex = text.mid(firstDot + 1, majorSize);
    version.minorIndex = text.mid(minorBegin, minorSize);
    if (testBegin < text.size() && text.at(testBegin) == QLatin1Char('-')) {
        ++testBegin;
    }
    const int testSize = countDigits(text, testBegin, 3);
    version.testIndex = testSize > 0 ? text.mid(testBegin, testSize) : QString();
    return true;
}

bool readOldVersion(const QString& text, OldVersion& version)
{
    static const QRegularExpression expression(VersionManager::getRegularExpressionVersion());
    const QRegularExpressionMatch match = expression.match(text);
    version = {match.captured(1), match.captured(2), match.captured(3), match.captured(4),
               match.captured(5)};
    return match.hasMatch();
}

} // namespace

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
    OldVersion parts;
    if (!(isPlainVersion(version) ? readPlainVersion(version, parts)
                                  : readOldVersion(version, parts))) {
        MISCTOOLS_LOG(VersionManager).warning()
            << "Can not convert the following version:" << version;
        return;
    }
    m_mainVersion = parts.mainVersion;
    m_baseNumber = parts.baseNumber;
    m_majorIndex = parts.majorIndex;
    m_minorIndex = parts.minorIndex;
    m_testIndex = parts.testIndex;
}

void VersionManager::initializeVersionsNew(const QString& version)
{
    const QStringList versionAndHash = version.split(QLatin1Char('-'));
    m_mainVersion = versionAndHash.first();
    m_gitHash = versionAndHash.mid(1).join(QLatin1Char('-'));

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
