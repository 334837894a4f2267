#ifndef MISCTOOLS_PLATFORMFUNCTIONS_H
#define MISCTOOLS_PLATFORMFUNCTIONS_H

#include <QtCore/QJsonObject>
#include <QtCore/QString>

/*!
 * \file
 * \brief The functions that the library calls but does not define.
 *
 * Include this header to define the functions in device software, unless the device software
 * already declares them with the same signatures. Programs that only use the library do not need
 * it: on a development machine libMiscToolsPlatform.so.1 defines the functions. The dynamic loader
 * resolves them when the library is loaded; definitions in the application take precedence.
 *
 * \par Contract
 * - **Threads:** the library calls the functions in the thread that called the library; they must
 *   be thread-safe if the application uses the library in several threads.
 * - **Ownership:** the caller owns the arguments; the functions must not keep references to them.
 * - **Errors:** the functions must not throw.
 * - **Log messages:** the functions need not log; the library logs missing members.
 * - **Units and formats:** the product code is a string, such as "640917".
 *
 * \sa \ref porting
 * \since 1.0
 */

/*! \brief The device software's manifest; the library calls one of its functions. */
class Q_DECL_EXPORT DeviceManifestManager
{
public:
    /*! \brief Returns the device's product code, for example "640917". */
    static QString getProductCode();
};

/*!
 * \brief Reads the number under \a key in \a object into \a value.
 *
 * \return true if the member exists and is a number; otherwise false, and \a value must remain
 *         unchanged
 */
Q_DECL_EXPORT bool readDoubleValueFromJson(const QString& key, const QJsonObject& object,
                                           double& value);

/*! \brief Like readDoubleValueFromJson(), for a string. */
Q_DECL_EXPORT bool readStringValueFromJson(const QString& key, const QJsonObject& object,
                                           QString& value);

/*! \brief Like readDoubleValueFromJson(), for a Boolean. */
Q_DECL_EXPORT bool readBoolValueFromJson(const QString& key, const QJsonObject& object,
                                         bool& value);

#endif
