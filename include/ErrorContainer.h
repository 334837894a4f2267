#ifndef MISCTOOLS_ERRORCONTAINER_H
#define MISCTOOLS_ERRORCONTAINER_H

#include "MiscToolsGlobal.h"

#include <QtCore/QDebug>
#include <QtCore/QMetaType>
#include <QtCore/QString>

/*!
 * \file
 * \brief The result of an operation: an error code and a message.
 */

/*!
 * \brief The result of an operation: an error code and a message.
 *
 * Use it as a return value or signal argument where a bool is not enough. It can be stored in a
 * QVariant and passed through queued signals. Do not use it to translate error codes: it has no
 * messages for codes.
 *
 * \snippet ErrorContainer.cpp return
 *
 * \par Contract
 * - **Threads:** reentrant; one object must not be used in two threads at a time. The static
 *   functions are thread-safe.
 * - **Ownership:** copies are independent.
 * - **Errors:** nothing throws.
 * - **Log messages:** none.
 * - **Units and formats:** the predefined codes are negated errno values (see errno(3)); 0 means
 *   success. Any other number may be used as well.
 *
 * \sa \ref errors
 * \since 1.0
 */
class MISCTOOLS_EXPORT ErrorContainer
{
public:
    /*! \brief Creates an object without an error, and calls registerTypes(). */
    ErrorContainer();
    virtual ~ErrorContainer();

    /*! \brief Sets code and message. */
    void setError(int errorCode, const QString& errorMessage);
    /*! \brief Sets the code and clears the message. */
    void setError(int errorCode);
    /*! \brief Sets the message; the code becomes getDefaultErrorCode(). */
    void setError(const QString& errorMessage);

    /*! \brief Returns the code. */
    int getErrorCode() const;
    /*! \brief Returns the message. */
    QString getErrorMessage() const;
    /*! \brief Returns true if the code is not getErrorCodeNoError(), whatever the message is. */
    bool isError() const;

    /*! \brief Returns 0: success. */
    static int getErrorCodeNoError();
    /*! \brief Returns -1: an error that has only a message. */
    static int getDefaultErrorCode();
    /*! \brief Returns -2: ENOENT, negated. */
    static int getErrorCodeNoSuchFileOrDirectory();
    /*! \brief Returns -12: ENOMEM, negated. */
    static int getErrorCodeOutOfMemory();
    /*! \brief Returns -16: EBUSY, negated. */
    static int getErrorCodeResourceBusy();
    /*! \brief Returns -38: ENOSYS, negated. */
    static int getErrorCodeFunctionNotImplemented();

    /*! \brief Registers the meta-type "ErrorContainer". Later calls are no-ops. */
    static void registerTypes();

private:
    int m_errorCode;
    QString m_errorMessage;
};

Q_DECLARE_METATYPE(ErrorContainer)

/*!
 * \brief Writes the code, then the message, in the format of the stream.
 * \since 1.0
 */
MISCTOOLS_EXPORT QDebug operator<<(QDebug debug, const ErrorContainer& error);

#endif
