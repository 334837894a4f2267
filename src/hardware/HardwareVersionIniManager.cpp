#include "HardwareVersionIniManager.h"

#include "IniFileManager.h"
#include "common/Log.h"

#include <new>

HardwareVersionIniManager::HardwareVersionIniManager(const QByteArray& data,
                                                     const QString& fileTemplate)
{
    m_tempFile.setFileTemplate(fileTemplate);
    if (!m_tempFile.open()) {
        MISCTOOLS_LOG(HardwareVersionIniManager).warning()
            << "Can't open temporary file for version data!";
        return;
    }
    // Only a write of 0 bytes is an error here: a truncated file shows in its values.
    if (m_tempFile.write(data) == 0) {
        MISCTOOLS_LOG(HardwareVersionIniManager).warning()
            << "Error on writing to temporary file for version data!";
        return;
    }
    m_tempFile.flush();
    // On Linux, the file has no directory entry until fileName() is called.
    const QString fileName = m_tempFile.fileName();
    m_iniFileManager.reset(new (std::nothrow) IniFileManager(fileName, nullptr));
    if (m_iniFileManager.isNull()) {
        MISCTOOLS_LOG(HardwareVersionIniManager).critical()
            << "Can't create 'IniFileManager' object!";
        return;
    }
    m_iniFileManager->sync();
}

HardwareVersionIniManager::~HardwareVersionIniManager()
{
    // The manager must be destroyed before the file that it reads.
    m_iniFileManager.reset();
    m_tempFile.close();
}

QString HardwareVersionIniManager::getType() const
{
    return getStringValueFromIniFile(getVersionDataGroup(), getKeyType());
}

QString HardwareVersionIniManager::getTypeName() const
{
    return getStringValueFromIniFile(getVersionDataGroup(), getKeyTypeName());
}

QString HardwareVersionIniManager::getHwCompatibilityIndex() const
{
    return getStringValueFromIniFile(getVersionDataGroup(), getKeyHwCompIndex());
}

QString HardwareVersionIniManager::getHwVersion() const
{
    return getStringValueFromIniFile(getVersionDataGroup(), getKeyHwVersion());
}

QString HardwareVersionIniManager::getLpIdNumber() const
{
    return getStringValueFromIniFile(getVersionDataGroup(), getKeyLpIdNumber());
}

QString HardwareVersionIniManager::getComment() const
{
    if (m_iniFileManager.isNull()) {
        // Unlike in the message below, the class name has no quotes.
        MISCTOOLS_LOG(HardwareVersionIniManager).warning()
            << "No valid IniFileManager object for accessing section" << getVersionDataGroup()
            << "with key" << getKeyComment() << "!";
        return QString();
    }
    if (!m_iniFileManager->contains(getVersionDataGroup(), getKeyComment())) {
        return QString();
    }
    return m_iniFileManager->getValueString(getVersionDataGroup(), getKeyComment(), QString());
}

QString HardwareVersionIniManager::getStringValueFromIniFile(const QString& section,
                                                             const QString& key) const
{
    if (m_iniFileManager.isNull()) {
        MISCTOOLS_LOG(HardwareVersionIniManager).warning()
            << "No valid 'IniFileManager' object for accessing section" << section << "with key"
            << key << "!";
        return QString();
    }
    return m_iniFileManager->getValueString(section, key, QString());
}

const QString& HardwareVersionIniManager::getVersionDataGroup() const
{
    static const QString group = QLatin1String("");
    return group;
}

const QString& HardwareVersionIniManager::getKeyType() const
{
    static const QString key = QStringLiteral("Type");
    return key;
}

const QString& HardwareVersionIniManager::getKeyTypeName() const
{
    static const QString key = QStringLiteral("TypeName");
    return key;
}

const QString& HardwareVersionIniManager::getKeyHwCompIndex() const
{
    static const QString key = QStringLiteral("CompatibilityIndex");
    return key;
}

const QString& HardwareVersionIniManager::getKeyHwVersion() const
{
    static const QString key = QStringLiteral("Version");
    return key;
}

const QString& HardwareVersionIniManager::getKeyLpIdNumber() const
{
    static const QString key = QStringLiteral("LP-ID");
    return key;
}

const QString& HardwareVersionIniManager::getKeyComment() const
{
    static const QString key = QStringLiteral("Comment");
    return key;
}
