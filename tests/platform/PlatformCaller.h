#ifndef TESTS_PLATFORMCALLER_H
#define TESTS_PLATFORMCALLER_H

#include <QtCore/QJsonObject>
#include <QtCore/QString>

/*
 * A shared library in the position of MiscTools: it calls the platform functions and is linked
 * against the bundled ones. The loader decides which definitions are used.
 */
namespace PlatformCaller {

Q_DECL_EXPORT QString productCode();
Q_DECL_EXPORT bool readDouble(const QString& key, const QJsonObject& object, double& value);
Q_DECL_EXPORT bool readString(const QString& key, const QJsonObject& object, QString& value);
Q_DECL_EXPORT bool readBool(const QString& key, const QJsonObject& object, bool& value);

} // namespace PlatformCaller

#endif
