#include "VersionFileIniManager.h"

VersionFileIniManager::VersionFileIniManager()
    : m_iniFileManager(QStringLiteral("/orvalis/") + getFileNameVersionFile(), nullptr)
{
}

VersionFileIniManager::~VersionFileIniManager() = default;

QString VersionFileIniManager::getMainVersionVersionString() const
{
    return m_iniFileManager.getValueString(getSectionNameMainVersion(),
                                           QStringLiteral("VersionString"), QString());
}

QString VersionFileIniManager::getVersionStringHash() const
{
    return m_iniFileManager.getValueString(getSectionNameMainVersion(),
                                           QStringLiteral("VersionStringHash"), QString());
}

const QString& VersionFileIniManager::getFileNameVersionFile()
{
    static const QString fileName = QStringLiteral("VersionFile.ini");
    return fileName;
}

const QString& VersionFileIniManager::getSectionNameMainVersion()
{
    static const QString section = QStringLiteral("MainVersion");
    return section;
}
