#include "OrvalisVersionInfoIniManager.h"

OrvalisVersionInfoIniManager::OrvalisVersionInfoIniManager()
    : m_iniFileManager(QStringLiteral("/orvalis/etc/") + getFileNameOrvalisVersionInfoIni(),
                       nullptr)
{
}

OrvalisVersionInfoIniManager::~OrvalisVersionInfoIniManager() = default;

QString OrvalisVersionInfoIniManager::getApplicationVersion() const
{
    return m_iniFileManager.getValueString(getGroupNameApplicationVersion(), getKeyVersion(),
                                           QString());
}

QString OrvalisVersionInfoIniManager::getProductCode() const
{
    return m_iniFileManager.getValueString(getGroupNameApplicationVersion(), getKeyProductCode(),
                                           QString());
}

QString OrvalisVersionInfoIniManager::getCreationDate() const
{
    return m_iniFileManager.getValueString(getGroupNameGeneral(), getKeyCreationDate(), QString());
}

const QString& OrvalisVersionInfoIniManager::getFileNameOrvalisVersionInfoIni()
{
    static const QString fileName = QStringLiteral("OrvalisVersionInfo.ini");
    return fileName;
}

const QString& OrvalisVersionInfoIniManager::getGroupNameGeneral()
{
    static const QString group = QStringLiteral("General");
    return group;
}

const QString& OrvalisVersionInfoIniManager::getGroupNameApplicationVersion()
{
    static const QString group = QStringLiteral("ApplicationVersion");
    return group;
}

const QString& OrvalisVersionInfoIniManager::getKeyVersion()
{
    static const QString key = QStringLiteral("Version");
    return key;
}

const QString& OrvalisVersionInfoIniManager::getKeyProductCode()
{
    static const QString key = QStringLiteral("ProductCode");
    return key;
}

const QString& OrvalisVersionInfoIniManager::getKeyCreationDate()
{
    static const QString key = QStringLiteral("CreationDate");
    return key;
}
