#include <BootInformationHelper.h>

#include <QtCore/QJsonObject>
#include <QtCore/QString>

#include <cstdio>

// What the device's software supplies: its product code, and three readers of JSON members.
class Q_DECL_EXPORT DeviceManifestManager
{
public:
    static QString getProductCode();
};

QString DeviceManifestManager::getProductCode()
{
    return QStringLiteral("640917");
}

Q_DECL_EXPORT bool readDoubleValueFromJson(const QString& key, const QJsonObject& object,
                                           double& value)
{
    const QJsonValue member = object.value(key);
    value = member.toDouble(value);
    return member.isDouble();
}

Q_DECL_EXPORT bool readStringValueFromJson(const QString& key, const QJsonObject& object,
                                           QString& value)
{
    const QJsonValue member = object.value(key);
    value = member.toString(value);
    return member.isString();
}

Q_DECL_EXPORT bool readBoolValueFromJson(const QString& key, const QJsonObject& object, bool& value)
{
    const QJsonValue member = object.value(key);
    value = member.toBool(value);
    return member.isBool();
}

int main()
{
    // This product can tell a hard reset: the reboot marker is missing.
    const bool isHardReset = BootInformationHelper().isHardReset();
    std::printf("hard reset: %s\n", isHardReset ? "yes" : "no");
    return 0;
}
