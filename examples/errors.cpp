#include <ErrorContainer.h>
#include <VariantConversionTools.h>

#include <QtCore/QFile>
#include <QtCore/QPoint>

#include <cstdio>

namespace {

ErrorContainer checkFile(const QString& path)
{
    ErrorContainer error;
    if (!QFile::exists(path)) {
        error.setError(ErrorContainer::getErrorCodeNoSuchFileOrDirectory(),
                       QStringLiteral("There is no %1").arg(path));
    }
    return error;
}

} // namespace

int main()
{
    const ErrorContainer error = checkFile(QStringLiteral("calibration.ini"));
    if (error.isError()) {
        std::printf("%d: %s\n", error.getErrorCode(), qPrintable(error.getErrorMessage()));
    }

    bool isOn = false;
    const bool isText = VariantConversionTools::toBool(QVariant(QStringLiteral("true")), isOn);
    std::printf("converted: %s, value: %s\n", isText ? "yes" : "no", isOn ? "on" : "off");

    // A point has no boolean value: the variable stays as it is.
    const bool isPoint = VariantConversionTools::toBool(QVariant(QPoint(1, 2)), isOn);
    std::printf("converted: %s, value: %s\n", isPoint ? "yes" : "no", isOn ? "on" : "off");
    return 0;
}
