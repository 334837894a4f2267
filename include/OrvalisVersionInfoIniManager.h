#ifndef MISCTOOLS_ORVALISVERSIONINFOINIMANAGER_H
#define MISCTOOLS_ORVALISVERSIONINFOINIMANAGER_H

#include "IniFileManager.h"
#include "MiscToolsGlobal.h"

#include <QtCore/QString>

/*!
 * \brief Reads the application's version information from /orvalis/etc/OrvalisVersionInfo.ini.
 *
 * \snippet OrvalisVersionInfoIniManager.cpp info
 *
 * \par Contract
 * - **Threads:** one object may be shared; every call locks it.
 * - **Ownership:** the object owns its IniFileManager; it cannot be copied.
 * - **Errors:** nothing throws. A missing file is warned of at construction and is never created; a
 *   missing value is empty, with the warnings of IniFileManager::getValueString().
 * - **Units and formats:** values are given as they stand.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT OrvalisVersionInfoIniManager
{
public:
    /*! \brief Opens the file. */
    OrvalisVersionInfoIniManager();
    virtual ~OrvalisVersionInfoIniManager();

    /*! \brief The application's version: "Version" in "ApplicationVersion". */
    QString getApplicationVersion() const;

    /*! \brief The product code: "ProductCode" in "ApplicationVersion". */
    QString getProductCode() const;

    /*!
     * \brief The creation date: "CreationDate" in the group "General".
     *
     * In this INI dialect the section [General] holds the keys outside every group. The date is
     * therefore found only in a section that is written [%General], which is how QSettings itself
     * stores a group of the name General.
     */
    QString getCreationDate() const;

    /*! \brief "OrvalisVersionInfo.ini" */
    static const QString& getFileNameOrvalisVersionInfoIni();
    /*! \brief "General" */
    static const QString& getGroupNameGeneral();
    /*! \brief "ApplicationVersion" */
    static const QString& getGroupNameApplicationVersion();
    /*! \brief "Version" */
    static const QString& getKeyVersion();
    /*! \brief "ProductCode" */
    static const QString& getKeyProductCode();
    /*! \brief "CreationDate" */
    static const QString& getKeyCreationDate();

private:
    IniFileManager m_iniFileManager;
};

#endif
