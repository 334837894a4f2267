// Returns the outcome of an operation as an object: a code and a text instead of an exception.

#include <ErrorContainer.h>

#include <QtCore/QFile>
#include <QtCore/QVariant>

#include <cstdio>

namespace {

//! [return]
ErrorContainer checkFile(const QString& path)
{
    ErrorContainer error; // no error yet
    if (!QFile::exists(path)) {
        error.setError(ErrorContainer::getErrorCodeNoSuchFileOrDirectory(),
                       QStringLiteral("There is no %1").arg(path));
    }
    return error;
}
//! [return]

void print(const ErrorContainer& error)
{
    std::printf("error: %s, code %d <%s>\n", error.isError() ? "yes" : "no", error.getErrorCode(),
                qPrintable(error.getErrorMessage()));
}

} // namespace

int main()
{
    print(checkFile(QStringLiteral("calibration.ini")));
    print(ErrorContainer());

    // With a text alone, the code becomes the default code.
    ErrorContainer error;
    error.setError(QStringLiteral("The sensor does not answer"));
    // The type is registered with Qt: it passes through variants, properties and queued signals.
    const QVariant variant = QVariant::fromValue(error);
    print(variant.value<ErrorContainer>());
    return 0;
}
