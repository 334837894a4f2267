#include <BootInformationHelper.h>
#include <PlatformFunctions.h>

#include <cstdio>

// Defines the platform functions as device software does: the product code, and three readers of
// JSON members.
QString DeviceManifestManager::getProductCode()
{
    return QStringLiteral("640917");
}

bool readDoubleValueFromJson(const QString& key, const QJsonObject& object, double& value)
{
    const QJsonValue member = object.value(key);
    value = member.toDouble(value);
    return member.isDouble();
}

bool readStringValueFromJson(const QString& key, const QJsonObject& object, QString& value)
{
    const QJsonValue member = object.value(key);
    value = member.toString(value);
    return member.isString();
}

bool readBoolValueFromJson(const QString& key, const QJsonObject& object, bool& value)
{
    const QJsonValue member = object.value(key);
    value = member.toBool(value);
    return member.isBool();
}

int main()
{
    // This product detects a hard reset: the reboot marker is missing.
    const bool isHardReset = BootInformationHelper().isHardReset();
    std::printf("hard reset: %s\n", isHardReset ? "yes" : "no");
    return 0;
}
