#include "Rows.h"

#include <QtCore/QFile>
#include <QtCore/QStringList>
#include <QtCore/QSysInfo>
#include <QtCore/QThread>

namespace {

QString processorModel()
{
    const QStringList lines = readFile(QStringLiteral("/proc/cpuinfo")).split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        if (line.startsWith(QStringLiteral("model name"))) {
            return line.section(QLatin1Char(':'), 1).trimmed();
        }
    }
    return QStringLiteral("unknown");
}

TimeRow timeRow(const QStringList& fields)
{
    return {fields.at(1),
            fields.at(2),
            fields.at(3) == QStringLiteral("table"),
            fields.at(4),
            fields.at(5),
            fields.at(6).toDouble(),
            fields.at(7),
            fields.at(8).toDouble(),
            fields.at(9).toDouble(),
            fields.at(10).toDouble(),
            fields.at(11)};
}

CountRow countRow(const QStringList& fields)
{
    return {fields.at(1), fields.at(2), fields.at(3), fields.at(4).toDouble(), fields.value(5)};
}

} // namespace

QString CountRow::key() const
{
    return QStringList{program, operation, measure}.join(QLatin1Char('\t'));
}

bool CountRow::isWithinLimit() const
{
    return limit.isEmpty() || count <= limit.toDouble();
}

Rows readRows(const QString& filePath)
{
    Rows rows;
    const QStringList lines = readFile(filePath).split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        const QStringList fields = line.split(QLatin1Char('\t'));
        if (fields.size() >= 12 && fields.at(0) == QStringLiteral("time")) {
            rows.times.append(timeRow(fields));
        } else if (fields.size() >= 5 && fields.at(0) == QStringLiteral("count")) {
            rows.counts.append(countRow(fields));
        } else if (!line.isEmpty() && !line.startsWith(QLatin1Char('#'))) {
            qFatal("%s: not understood: %s", qPrintable(filePath), qPrintable(line));
        }
    }
    return rows;
}

QString readFile(const QString& filePath)
{
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("cannot read %s: %s", qPrintable(filePath), qPrintable(file.errorString()));
    }
    return QString::fromUtf8(file.readAll());
}

void writeFile(const QString& filePath, const QString& content)
{
    QFile file(filePath);
    const QByteArray bytes = content.toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        qFatal("cannot write %s: %s", qPrintable(filePath), qPrintable(file.errorString()));
    }
}

QString readableTime(double nanoseconds)
{
    const struct
    {
        double size;
        QString name;
    } units[] = {{1e9, QStringLiteral("s")},
                 {1e6, QStringLiteral("ms")},
                 {1e3, QStringLiteral("µs")},
                 {0, QStringLiteral("ns")}};
    for (const auto& unit : units) {
        if (nanoseconds >= unit.size) {
            const double number = nanoseconds / qMax(unit.size, 1.0);
            const int decimals = number < 10 ? 2 : number < 100 ? 1 : 0;
            return QStringLiteral("%1 %2").arg(number, 0, 'f', decimals).arg(unit.name);
        }
    }
    return QString();
}

QVector<Environment> environment()
{
    return {
        {QStringLiteral("processor"), QStringLiteral("%1 (%2), %3 cores")
                                          .arg(processorModel(), QSysInfo::currentCpuArchitecture())
                                          .arg(QThread::idealThreadCount())},
        {QStringLiteral("system"), QSysInfo::prettyProductName()},
        {QStringLiteral("compiler"), QStringLiteral("GCC " __VERSION__)},
        {QStringLiteral("Qt"), QLatin1String(qVersion())}};
}
