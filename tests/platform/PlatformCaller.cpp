#include "PlatformCaller.h"

#include "PlatformFunctions.h"

QString PlatformCaller::productCode()
{
    return DeviceManifestManager::getProductCode();
}

bool PlatformCaller::readDouble(const QString& key, const QJsonObject& object, double& value)
{
    return readDoubleValueFromJson(key, object, value);
}

bool PlatformCaller::readString(const QString& key, const QJsonObject& object, QString& value)
{
    return readStringValueFromJson(key, object, value);
}

bool PlatformCaller::readBool(const QString& key, const QJsonObject& object, bool& value)
{
    return readBoolValueFromJson(key, object, value);
}
