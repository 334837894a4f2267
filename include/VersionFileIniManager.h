#ifndef MISCTOOLS_VERSIONFILEINIMANAGER_H
#define MISCTOOLS_VERSIONFILEINIMANAGER_H

#include "IniFileManager.h"
#include "MiscToolsGlobal.h"

#include <QtCore/QString>

/*!
 * \brief Reads the software version from /orvalis/VersionFile.ini.
 *
 * \snippet VersionFileIniManager.cpp version
 *
 * \par Contract
 * - **Threads:** one object may be shared; every call locks it.
 * - **Ownership:** the object owns its IniFileManager; it cannot be copied.
 * - **Errors:** nothing throws. A missing file is warned of at construction and is never created; a
 *   missing value is empty, with the warnings of IniFileManager::getValueString().
 * - **Units and formats:** values are given as they stand; VersionManager takes a version apart.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT VersionFileIniManager
{
public:
    /*! \brief Opens the file. */
    VersionFileIniManager();
    virtual ~VersionFileIniManager();

    /*! \brief The software's version: "VersionString" in "MainVersion". */
    QString getMainVersionVersionString() const;

    /*! \brief The hash of the version: "VersionStringHash" in "MainVersion". */
    QString getVersionStringHash() const;

    /*! \brief "VersionFile.ini" */
    static const QString& getFileNameVersionFile();
    /*! \brief "MainVersion" */
    static const QString& getSectionNameMainVersion();

private:
    IniFileManager m_iniFileManager;
};

#endif
