#ifndef MISCTOOLS_VERSIONFILEINIMANAGER_H
#define MISCTOOLS_VERSIONFILEINIMANAGER_H

#include "IniFileManager.h"
#include "MiscToolsGlobal.h"

#include <QtCore/QString>

/*!
 * \brief Reads the software version from /orvalis/VersionFile.ini.
 *
 * Use it to find out which software is installed on the device. For the application alone, use
 * OrvalisVersionInfoIniManager instead; to parse the version, use VersionManager.
 *
 * \snippet VersionFileIniManager.cpp version
 *
 * \par Contract
 * - **Threads:** thread-safe; every call locks the object.
 * - **Ownership:** the object owns its IniFileManager and cannot be copied; results are copies.
 * - **Errors:** nothing throws. A missing file is never created; a missing value is empty.
 * - **Log messages:** those of IniFileManager: one warning at construction if there is no file, and
 *   one for each missing value (see IniFileManager::getValueString()).
 * - **Units and formats:** values are returned unchanged.
 *
 * \sa \ref versions, \ref log-messages-inifilemanager "log messages of IniFileManager"
 * \since 1.0
 */
class MISCTOOLS_EXPORT VersionFileIniManager
{
public:
    /*! \brief Opens the file; warns if there is none. */
    VersionFileIniManager();
    virtual ~VersionFileIniManager();

    /*! \brief Returns the software version: "VersionString" in "MainVersion". */
    QString getMainVersionVersionString() const;

    /*! \brief Returns the hash of the version: "VersionStringHash" in "MainVersion". */
    QString getVersionStringHash() const;

    /*! \brief Returns "VersionFile.ini". */
    static const QString& getFileNameVersionFile();
    /*! \brief Returns "MainVersion". */
    static const QString& getSectionNameMainVersion();

private:
    IniFileManager m_iniFileManager;
};

#endif
