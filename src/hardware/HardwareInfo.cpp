#include "HardwareInfo.h"

HardwareInfo::HardwareInfo() = default;

HardwareInfo::~HardwareInfo() = default;

QString HardwareInfo::type() const
{
    return m_type;
}

void HardwareInfo::setType(const QString& type)
{
    m_type = type;
}

QString HardwareInfo::typeName() const
{
    return m_typeName;
}

void HardwareInfo::setTypeName(const QString& typeName)
{
    m_typeName = typeName;
}

QString HardwareInfo::hwVersion() const
{
    return m_hwVersion;
}

void HardwareInfo::setHwVersion(const QString& hwVersion)
{
    m_hwVersion = hwVersion;
}

QString HardwareInfo::hwCompIndex() const
{
    return m_hwCompIndex;
}

void HardwareInfo::setHwCompIndex(const QString& hwCompIndex)
{
    m_hwCompIndex = hwCompIndex;
}

QString HardwareInfo::lpId() const
{
    return m_lpId;
}

void HardwareInfo::setLpId(const QString& lpId)
{
    m_lpId = lpId;
}

QString HardwareInfo::Comment() const
{
    return m_comment;
}

void HardwareInfo::setComment(const QString& comment)
{
    m_comment = comment;
}
