#ifndef MISCTOOLS_VERSIONMANAGER_H
#define MISCTOOLS_VERSIONMANAGER_H

#include "MiscToolsGlobal.h"

#include <QtCore/QString>

/*!
 * \brief Takes a software version apart, in the old or the new format.
 *
 * \snippet VersionManager.cpp parts
 *
 * The number of dots decides: two make the old format, "V8.12.3-45" (base number, major, minor and
 * test index), anything else is read as the new one, "8.100.2.7.1234-g1a2b3c" (base number, major,
 * minor, patch version, build number and git hash), which has four.
 *
 * \par Contract
 * - **Threads:** the getters only read, and several threads may call them on one object. The three
 *   initialize functions change the object and must not run beside any other call.
 * - **Ownership:** a value that may be copied; getters return copies.
 * - **Errors:** nothing throws. What a version does not hold is a null text; what is odd is a
 *   warning.
 * - **Units and formats:** every part is text as it stands, leading zeros included.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT VersionManager
{
public:
    /*! \brief Takes \a version apart, as initializeVersions(). */
    VersionManager(const QString& version);
    virtual ~VersionManager();

    /*! \brief An independent copy. */
    VersionManager(const VersionManager&) = default;
    /*! \brief Makes this an independent copy. */
    VersionManager& operator=(const VersionManager&) = default;

    /*! \brief The version without "V", test index or git hash: "8.12.3", "8.100.2.7.1234". */
    QString getMainVersion() const;
    /*! \brief The text before the first dot of the main version (old format: the last but one). */
    QString getBaseNumber() const;
    /*! \brief The number after the base number. */
    QString getMajorIndex() const;
    /*! \brief The number after the major index. */
    QString getMinorIndex() const;

    /*! \brief Old format only; else warns "Test index exist only in old version." */
    QString getTestIndex() const;
    /*! \brief New format only; else warns "Patch version exist only in new version." */
    QString getPatchVersion() const;
    /*! \brief New format only; else warns "Build number exist only in new version." */
    QString getBuildNumber() const;
    /*!
     * \brief All that follows the first dash. New format only; else warns "Git hash exist only in
     *        new version."
     */
    QString getGitHash() const;

    /*! \brief Whether the version was read in the old format. */
    bool isOldVersion() const;

    /*!
     * \brief Whether \a version is in the old format: it has two dots.
     *
     * Neither two nor four dots warn "Number of dots", the number, "in version not allowed:", the
     * version, and count as the new format.
     */
    bool isOldVersion(const QString& version);

    /*! \brief Decides the format of \a version and takes it apart. */
    void initializeVersions(const QString& version);

    /*!
     * \brief Sets the parts of the old format, from the first place where the expression matches.
     *
     * Where it does not, warns "Can not convert the following version:" with the version and sets
     * nothing.
     */
    void initializeVersionsOld(const QString& version);

    /*! \brief Sets the parts of the new format; parts that \a version lacks stay as they are. */
    void initializeVersionsNew(const QString& version);

    /*! \brief The expression of the old format. */
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
