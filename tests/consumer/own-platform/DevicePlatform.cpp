// The functions that device software supplies to the library, as it declares and defines them.

#include <QtCore/QJsonObject>
#include <QtCore/QString>

class Q_DECL_EXPORT DeviceManifestManager
{
public:
    static QString getProductCode();
};

QString DeviceManifestManager::getProductCode()
{
    return QString::fromLatin1("640917");
}

// This device's documents are of one kind of value only, so that calls can be told from the bundled
// functions'.
Q_DECL_EXPORT bool readDoubleValueFromJson(const QString&, const QJsonObject&, double& value)
{
    value = 47.5;
    return true;
}

Q_DECL_EXPORT bool readStringValueFromJson(const QString&, const QJsonObject&, QString& value)
{
    value = QString::fromLatin1("2024-03-01T12:30:05");
    return true;
}

Q_DECL_EXPORT bool readBoolValueFromJson(const QString&, const QJsonObject&, bool& value)
{
    value = true;
    return true;
}
