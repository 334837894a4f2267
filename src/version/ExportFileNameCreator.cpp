#include "ExportFileNameCreator.h"

#include "RaucSystemConfigIniManager.h"

#include <QtCore/QDateTime>

namespace {

const QString pattern = QStringLiteral("V%1_%2.%3");

} // namespace

ExportFileNameCreator::ExportFileNameCreator() = default;

ExportFileNameCreator::~ExportFileNameCreator() = default;

QString ExportFileNameCreator::create(const QString& extension)
{
    const QString deviceIndex = RaucSystemConfigIniManager().getDeviceIndex();

    const QLatin1Char underscore('_');
    QString time = QDateTime::currentDateTime().toString(Qt::ISODate);
    time.replace(QLatin1Char('.'), underscore);
    time.replace(QLatin1Char(':'), underscore);
    time.replace(QLatin1Char('-'), underscore);

    // All arguments at once: a "%1" in the extension must not be substituted.
    return pattern.arg(deviceIndex, time, extension);
}
