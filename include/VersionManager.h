#ifndef MISCTOOLS_VERSIONMANAGER_H
#define MISCTOOLS_VERSIONMANAGER_H

#include "MiscToolsGlobal.h"

#include <QtCore/QString>

/*!
 * \brief Parses a software version in the old or the new format.
 *
 * Use it to read the parts of a version. Do not use it to compare versions: the parts are strings.
 * The number of dots decides the format: a version with two dots is in the old format, "V8.12.3-45"
 * (base number, major, minor and test index). Any other is parsed in the new format, which has four
 * dots, "8.100.2.7.1234-g1a2b3c" (base number, major, minor, patch version, build number and git
 * hash).
 *
 * \snippet VersionManager.cpp parts
 *
 * \par Contract
 * - **Threads:** reentrant; several threads may call the getters of one object, but the three
 *   initialize functions must not overlap with any other call.
 * - **Ownership:** copies are independent; getters return copies.
 * - **Errors:** nothing throws. A part that the version does not contain is a null string.
 * - **Log messages:** warnings for versions in neither format and for getters of the other format;
 *   see \ref log-messages-versionmanager "log messages of VersionManager".
 * - **Units and formats:** every part is a string, unchanged, including leading zeros.
 *
 * \sa \ref versions, \ref formats
 * \since 1.0
 */
class MISCTOOLS_EXPORT VersionManager
{
public:
    /*! \brief Parses \a version, as initializeVersions() does. */
    VersionManager(const QString& version);
    virtual ~VersionManager();

    /*! \brief Copies the parts. */
    VersionManager(const VersionManager&) = default;
    /*! \brief Copies the parts. */
    VersionManager& operator=(const VersionManager&) = default;

    /*!
     * \brief Returns the version without "V", test index or git hash: "8.12.3", "8.100.2.7.1234".
     */
    QString getMainVersion() const;
    /*!
     * \brief Returns the part of the main version before its first dot; in the old format, before
     *        its second-to-last dot.
     */
    QString getBaseNumber() const;
    /*! \brief Returns the number after the base number. */
    QString getMajorIndex() const;
    /*! \brief Returns the number after the major index. */
    QString getMinorIndex() const;

    /*!
     * \brief Returns the test index of the old format.
     *
     * In the new format, warns "Test index exist only in old version."
     */
    QString getTestIndex() const;
    /*!
     * \brief Returns the patch version of the new format.
     *
     * In the old format, warns "Patch version exist only in new version."
     */
    QString getPatchVersion() const;
    /*!
     * \brief Returns the build number of the new format.
     *
     * In the old format, warns "Build number exist only in new version."
     */
    QString getBuildNumber() const;
    /*!
     * \brief Returns the git hash of the new format: everything after the first dash.
     *
     * In the old format, warns "Git hash exist only in new version."
     */
    QString getGitHash() const;

    /*! \brief Returns true if the version was parsed in the old format. */
    bool isOldVersion() const;

    /*!
     * \brief Returns true if \a version is in the old format, which has two dots.
     *
     * Any other version counts as the new format. If it does not have four dots, warns "Number of
     * dots", the number, "in version not allowed:", the version.
     */
    bool isOldVersion(const QString& version);

    /*! \brief Determines the format of \a version and parses it. */
    void initializeVersions(const QString& version);

    /*!
     * \brief Sets the parts of the old format.
     *
     * They are the captures of the first match of getRegularExpressionVersion(). If there is no
     * match, sets nothing and warns "Can not convert the following version:" with the version.
     */
    void initializeVersionsOld(const QString& version);

    /*! \brief Sets the parts of the new format; parts that \a version lacks remain unchanged. */
    void initializeVersionsNew(const QString& version);

    /*! \brief Returns the regular expression of the old format. */
    static const QString& getRegularExpressionVersion();

private:
    QString m_mainVersion;
    QString m_baseNumber;
    QString m_majorIndex;
    QString m_minorIndex;
    QString m_testIndex;
    QString m_patchVersion;
    QString m_buildNumber;
    QString m_gitHash;
    bool m_isOldVersion;
};

#endif
