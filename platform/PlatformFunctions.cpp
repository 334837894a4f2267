#include "PlatformFunctions.h"

#include <QtCore/QtGlobal>

QString DeviceManifestManager::getProductCode()
{
    // The environment takes precedence, so that one build can run as any product on a test bench.
    static constexpr char environmentVariable[] = "MISCTOOLS_PRODUCT_CODE";
    if (qEnvironmentVariableIsSet(environmentVariable)) {
        return qEnvironmentVariable(environmentVariable);
    }
    return QStringLiteral(MISCTOOLS_PRODUCT_CODE);
}

bool readDoubleValueFromJson(const QString& key, const QJsonObject& object, double& value)
{
    const QJsonValue member = object.value(key);
    if (!member.isDouble()) {
        return false;
    }
    value = member.toDouble();
    return true;
}

bool readStringValueFromJson(const QString& key, const QJsonObject& object, QString& value)
{
    const QJsonValue member = object.value(key);
    if (!member.isString()) {
        return false;
    }
    value = member.toString();
    return true;
}

bool readBoolValueFromJson(const QString& key, const QJsonObject& object, bool& value)
{
    const QJsonValue member = object.value(key);
    if (!member.isBool()) {
        return false;
    }
    value = member.toBool();
    return true;
}
