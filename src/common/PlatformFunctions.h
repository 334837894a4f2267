#ifndef MISCTOOLS_PLATFORMFUNCTIONS_H
#define MISCTOOLS_PLATFORMFUNCTIONS_H

// The functions that this library calls and does not define: on a device the device software
// supplies them, elsewhere the small library under platform/ does. The loader resolves them when
// the library is loaded; definitions in the application come first.

#include <QtCore/QJsonObject>
#include <QtCore/QString>

class Q_DECL_EXPORT DeviceManifestManager
{
public:
    // The device's product code, for example "640917".
    static QString getProductCode();
};

// Each reads the member key of object. When it is there and of the right type its value is stored
// and the result is true; otherwise the result is false and value stays as it was.
Q_DECL_EXPORT bool readDoubleValueFromJson(const QString& key, const QJsonObject& object,
                                           double& value);
Q_DECL_EXPORT bool readStringValueFromJson(const QString& key, const QJsonObject& object,
                                           QString& value);
Q_DECL_EXPORT bool readBoolValueFromJson(const QString& key, const QJsonObject& object,
                                         bool& value);

#endif
