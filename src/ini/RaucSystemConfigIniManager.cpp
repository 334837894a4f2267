#include "RaucSystemConfigIniManager.h"

namespace {

const QString filePath = QStringLiteral("/etc/rauc/system.conf");
const QString sectionSystem = QStringLiteral("system");
const QString keyCompatible = QStringLiteral("compatible");

} // namespace

RaucSystemConfigIniManager::RaucSystemConfigIniManager() : m_iniFileManager(filePath, nullptr) {}

RaucSystemConfigIniManager::~RaucSystemConfigIniManager() = default;

QString RaucSystemConfigIniManager::getDeviceIndex() const
{
    return QString::number(m_iniFileManager.getValueInteger(sectionSystem, keyCompatible, 0), 10);
}
