// The functions that device software supplies to the library.

#include <PlatformFunctions.h>

QString DeviceManifestManager::getProductCode()
{
    return QString::fromLatin1("640917");
}

// This device's documents contain only one type of value, so that calls of these functions differ
// from calls of the bundled ones.
bool readDoubleValueFromJson(const QString&, const QJsonObject&, double& value)
{
    value = 47.5;
    return true;
}

bool readStringValueFromJson(const QString&, const QJsonObject&, QString& value)
{
    value = QString::fromLatin1("2024-03-01T12:30:05");
    return true;
}

bool readBoolValueFromJson(const QString&, const QJsonObject&, bool& value)
{
    value = true;
    return true;
}
