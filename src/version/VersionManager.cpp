#include "VersionManager.h"

#include "common/Log.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

#include <algorithm>
#include <array>

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

// Whether the expression for old versions finds in text what findPlainParts() finds: there are
// just the two dots that it asks for, and no limit of the expression's machinery is near.
bool isPlainVersion(const QString& text)
{
    constexpr int sizeLimit = 256;
    return text.size() <= sizeLimit && text.count(QLatin1Char('.')) == 2 &&
           std::none_of(text.cbegin(), text.cend(), [](QChar c) { return c.isSurrogate(); });
}

// Where the parts of an old version stand in its text: main version, base number, major, minor and
// test index. A part that is not there begins at -1.
struct Part
{
    int begin;
    int size;
};
using Parts = std::array<Part, 5>;

// Does by hand, in a hundredth of the time, what the expression for old versions does.
bool findPlainParts(const QString& text, Parts& parts)
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
    const int mainEnd = minorBegin + minorSize;
    int testBegin = mainEnd;
    if (testBegin < text.size() && text.at(testBegin) == QLatin1Char('-')) {
        ++testBegin;
    }
    const int testSize = countDigits(text, testBegin, 3);
    parts = {{{begin, mainEnd - begin},
              {begin, firstDot - begin},
              {firstDot + 1, majorSize},
              {minorBegin, minorSize},
              {testSize > 0 ? testBegin : -1, testSize}}};
    return true;
}

bool findParts(const QString& text, Parts& parts)
{
    static const QRegularExpression expression(VersionManager::getRegularExpressionVersion());
    const QRegularExpressionMatch match = expression.match(text);
    int group = 0;
    for (Part& part : parts) {
        ++group;
        part = {match.capturedStart(group), match.capturedLength(group)};
    }
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
    Parts parts;
    if (!(isPlainVersion(version) ? findPlainParts(version, parts) : findParts(version, parts))) {
        MISCTOOLS_LOG(VersionManager).warning()
            << "Can not convert the following version:" << version;
        return;
    }
    QString* const fields[] = {&m_mainVersion, &m_baseNumber, &m_majorIndex, &m_minorIndex,
                               &m_testIndex};
    auto part = parts.cbegin();
    for (QString* const field : fields) {
        *field = part->begin >= 0 ? version.mid(part->begin, part->size) : QString();
        ++part;
    }
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
