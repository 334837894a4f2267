#ifndef MISCTOOLS_ORVALISVERSIONINFOINIMANAGER_H
#define MISCTOOLS_ORVALISVERSIONINFOINIMANAGER_H

#include "IniFileManager.h"
#include "MiscToolsGlobal.h"

#include <QtCore/QString>

/*!
 * \brief Reads the application's version information from /orvalis/etc/OrvalisVersionInfo.ini.
 *
 * Use it to find out which application is installed, and for which product. For the version of the
 * software as a whole, use VersionFileIniManager instead; to write the file, use IniFileManager.
 *
 * \snippet OrvalisVersionInfoIniManager.cpp info
 *
 * \par Contract
 * - **Threads:** thread-safe; every call locks the object.
 * - **Ownership:** the object owns its IniFileManager and cannot be copied; results are copies.
 * - **Errors:** nothing throws. A missing file is never created; a missing value is empty.
 * - **Log messages:** those of IniFileManager: one warning at construction if there is no file, and
 *   one for each missing value (see IniFileManager::getValueString()).
 * - **Units and formats:** values are returned unchanged.
 *
 * \sa \ref versions, \ref gotchas,
 *     \ref log-messages-inifilemanager "log messages of IniFileManager"
 * \since 1.0
 */
class MISCTOOLS_EXPORT OrvalisVersionInfoIniManager
{
public:
    /*! \brief Opens the file; warns if there is none. */
    OrvalisVersionInfoIniManager();
    virtual ~OrvalisVersionInfoIniManager();

    /*! \brief Returns the application's version: "Version" in "ApplicationVersion". */
    QString getApplicationVersion() const;

    /*! \brief Returns the product code: "ProductCode" in "ApplicationVersion". */
    QString getProductCode() const;

    /*!
     * \brief Returns the creation date: "CreationDate" in the group "General".
     *
     * In this INI dialect, the section [General] contains the keys outside every group. The date is
     * therefore found only in a section that is spelled [%General], which is how QSettings stores a
     * group named General.
     */
    QString getCreationDate() const;

    /*! \brief Returns "OrvalisVersionInfo.ini". */
    static const QString& getFileNameOrvalisVersionInfoIni();
    /*! \brief Returns "General". */
    static const QString& getGroupNameGeneral();
    /*! \brief Returns "ApplicationVersion". */
    static const QString& getGroupNameApplicationVersion();
    /*! \brief Returns "Version". */
    static const QString& getKeyVersion();
    /*! \brief Returns "ProductCode". */
    static const QString& getKeyProductCode();
    /*! \brief Returns "CreationDate". */
    static const QString& getKeyCreationDate();

private:
    IniFileManager m_iniFileManager;
};

#endif
