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

    // All at once: what an extension holds is not substituted again.
    return pattern.arg(deviceIndex, time, extension);
}
