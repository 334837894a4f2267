#include "ErrorContainer.h"

#include <cerrno>

ErrorContainer::ErrorContainer() : m_errorCode(getErrorCodeNoError())
{
    registerTypes();
}

ErrorContainer::~ErrorContainer() = default;

void ErrorContainer::setError(int errorCode, const QString& errorMessage)
{
    m_errorCode = errorCode;
    m_errorMessage = errorMessage;
}

void ErrorContainer::setError(int errorCode)
{
    setError(errorCode, QString());
}

void ErrorContainer::setError(const QString& errorMessage)
{
    setError(getDefaultErrorCode(), errorMessage);
}

int ErrorContainer::getErrorCode() const
{
    return m_errorCode;
}

QString ErrorContainer::getErrorMessage() const
{
    return m_errorMessage;
}

bool ErrorContainer::isError() const
{
    return m_errorCode != getErrorCodeNoError();
}

int ErrorContainer::getErrorCodeNoError()
{
    return 0;
}

int ErrorContainer::getDefaultErrorCode()
{
    return -1;
}

int ErrorContainer::getErrorCodeNoSuchFileOrDirectory()
{
    return -ENOENT;
}

int ErrorContainer::getErrorCodeOutOfMemory()
{
    return -ENOMEM;
}

int ErrorContainer::getErrorCodeResourceBusy()
{
    return -EBUSY;
}

int ErrorContainer::getErrorCodeFunctionNotImplemented()
{
    return -ENOSYS;
}

void ErrorContainer::registerTypes()
{
    // Qt caches the type's ID: later calls are cheap and thread-safe.
    qRegisterMetaType<ErrorContainer>();
}

QDebug operator<<(QDebug debug, const ErrorContainer& error)
{
    return debug << error.getErrorCode() << error.getErrorMessage();
}
