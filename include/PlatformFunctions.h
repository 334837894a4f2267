#ifndef MISCTOOLS_PLATFORMFUNCTIONS_H
#define MISCTOOLS_PLATFORMFUNCTIONS_H

#include <QtCore/QJsonObject>
#include <QtCore/QString>

/*!
 * \file
 * \brief The functions that the library calls and does not define.
 *
 * On a device the device software defines them; elsewhere libMiscToolsPlatform.so.1 does. The
 * dynamic loader resolves them when the library is loaded, and definitions in the application take
 * precedence. Device software that defines them includes this header, unless it already has
 * declarations of its own with the same signatures.
 *
 * \par Contract
 * - **Threads:** the library calls them from the thread that called the library.
 * - **Ownership:** arguments are borrowed for the call.
 * - **Errors:** the functions must not throw, and the library logs what is missing.
 *
 * \since 1.0
 */

/*! \brief The device software's manifest, of which the library needs one function. */
class Q_DECL_EXPORT DeviceManifestManager
{
public:
    /*! \brief Returns the device's product code, for example "640917". */
    static QString getProductCode();
};

/*!
 * \brief Reads the number \a key of \a object into \a value.
 *
 * \return whether the member exists and is a number; otherwise \a value must stay as it was
 */
Q_DECL_EXPORT bool readDoubleValueFromJson(const QString& key, const QJsonObject& object,
                                           double& value);

/*! \brief As readDoubleValueFromJson(), for a string. */
Q_DECL_EXPORT bool readStringValueFromJson(const QString& key, const QJsonObject& object,
                                           QString& value);

/*! \brief As readDoubleValueFromJson(), for a Boolean. */
Q_DECL_EXPORT bool readBoolValueFromJson(const QString& key, const QJsonObject& object,
                                         bool& value);

#endif
