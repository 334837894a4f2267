#ifndef MISCTOOLS_ERRORCONTAINER_H
#define MISCTOOLS_ERRORCONTAINER_H

#include "MiscToolsGlobal.h"

#include <QtCore/QDebug>
#include <QtCore/QMetaType>
#include <QtCore/QString>

/*!
 * \file
 * \brief The outcome of an operation.
 */

/*!
 * \brief The outcome of an operation: an error code and a text.
 *
 * \snippet ErrorContainer.cpp return
 *
 * The codes are negated errno values (see errno(3)); 0 is success. Any other number may be used
 * too. The type can travel in a QVariant and through queued signals.
 *
 * \par Contract
 * - **Threads:** a plain value, one thread at a time; registerTypes() may be called from any
 *   thread.
 * - **Ownership:** copies are independent.
 * - **Errors:** none.
 * - **Units and formats:** no text is made from a code.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT ErrorContainer
{
public:
    /*! \brief No error, no text; registers the type. */
    ErrorContainer();
    virtual ~ErrorContainer();

    /*! \brief Sets code and text. */
    void setError(int errorCode, const QString& errorMessage);
    /*! \brief Sets the code and empties the text. */
    void setError(int errorCode);
    /*! \brief Sets the text; the code becomes getDefaultErrorCode(). */
    void setError(const QString& errorMessage);

    /*! \brief The code. */
    int getErrorCode() const;
    /*! \brief The text. */
    QString getErrorMessage() const;
    /*! \brief Whether the code is another than getErrorCodeNoError(); the text does not count. */
    bool isError() const;

    /*! \brief 0: success. */
    static int getErrorCodeNoError();
    /*! \brief -1: an error that has only a text. */
    static int getDefaultErrorCode();
    /*! \brief -2: ENOENT, negated. */
    static int getErrorCodeNoSuchFileOrDirectory();
    /*! \brief -12: ENOMEM, negated. */
    static int getErrorCodeOutOfMemory();
    /*! \brief -16: EBUSY, negated. */
    static int getErrorCodeResourceBusy();
    /*! \brief -38: ENOSYS, negated. */
    static int getErrorCodeFunctionNotImplemented();

    /*! \brief Registers the type "ErrorContainer" with Qt, once per process. */
    static void registerTypes();

private:
    int m_errorCode;
    QString m_errorMessage;
};

Q_DECLARE_METATYPE(ErrorContainer)

/*!
 * \brief Writes the code, then the text, as the stream writes numbers and texts.
 * \since 1.0
 */
MISCTOOLS_EXPORT QDebug operator<<(QDebug debug, const ErrorContainer& error);

#endif
