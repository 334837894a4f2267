#include "Counts.h"

#include <QtCore/QHash>
#include <QtCore/QRegularExpression>
#include <QtCore/QSet>
#include <QtCore/QTextStream>

#include <cmath>

namespace {

constexpr double allowedGrowth = 1.02;

const QString& environmentMark()
{
    static const QString mark = QStringLiteral("# counted with ");
    return mark;
}

// Counts depend on the compiler and on Qt, hardly on the processor's model.
QStringList environmentLines()
{
    QStringList lines;
    const QVector<Environment> all = environment();
    for (const Environment& each : all) {
        if (each.name == QStringLiteral("compiler") || each.name == QStringLiteral("Qt")) {
            lines.append(environmentMark() + each.name + QStringLiteral(": ") + each.value);
        }
    }
    return lines;
}

// What differs from run to run for reasons of the system.
double slack(const CountRow& row)
{
    if (row.measure.startsWith(QStringLiteral("peak memory"))) {
        return 512; // the kernel adds pages up in batches
    }
    return row.measure == QStringLiteral("instructions") ? 2 : 0.1;
}

bool grew(const CountRow& now, double recorded)
{
    return now.count > recorded * allowedGrowth + slack(now);
}

bool fell(const CountRow& now, double recorded)
{
    return now.count < recorded / allowedGrowth - slack(now);
}

QString number(double count)
{
    const bool isWhole = std::round(count) == count;
    return QString::number(count, 'f', isWhole ? 0 : 1);
}

QString change(double now, double recorded)
{
    if (recorded <= 0) {
        return QString();
    }
    return QStringLiteral("%1%2 %")
        .arg(now < recorded ? QString() : QStringLiteral("+"))
        .arg((now / recorded - 1) * 100, 0, 'f', 1);
}

void printRow(QTextStream& out, const CountRow& row, const QString& recorded,
              const QString& changed, const QString& verdict)
{
    QString limit;
    if (!row.limit.isEmpty()) {
        limit = QStringLiteral("<= %1: %2")
                    .arg(row.limit,
                         row.isWithinLimit() ? QStringLiteral("met") : QStringLiteral("NOT MET"));
    }
    out << QStringLiteral("%1 %2 %3 %4 %5 %6 %7  %8\n")
               .arg(row.program, -23)
               .arg(row.operation, -36)
               .arg(row.measure, -21)
               .arg(recorded, 12)
               .arg(number(row.count), 12)
               .arg(changed, 9)
               .arg(verdict, -13)
               .arg(limit);
}

void printEnvironment(QTextStream& out, const QString& recordedPath)
{
    const QStringList now = environmentLines();
    const QStringList recorded =
        readFile(recordedPath)
            .split(QLatin1Char('\n'))
            .filter(QRegularExpression(QLatin1Char('^') + environmentMark()));
    if (now != recorded) {
        out << "\nThe record was made with another compiler or Qt, so counts may differ for that:\n"
            << "  recorded  " << recorded.join(QStringLiteral("; ")) << '\n'
            << "  now       " << now.join(QStringLiteral("; ")) << '\n';
    }
}

} // namespace

void Counts::record(const QVector<CountRow>& counts, const QString& filePath)
{
    QStringList lines = {QStringLiteral(
        "# What operations take, per call. Recorded by: script/bench --counts --record")};
    lines += environmentLines();
    for (const CountRow& row : counts) {
        lines.append(QStringLiteral("count\t%1\t%2").arg(row.key(), number(row.count)));
    }
    writeFile(filePath, lines.join(QLatin1Char('\n')) + QLatin1Char('\n'));
}

bool Counts::compare(const QVector<CountRow>& counts, const QString& recordedPath, bool isWhole)
{
    QTextStream out(stdout);
    QHash<QString, double> recorded;
    QSet<QString> programs;
    const QVector<CountRow> recordedRows = readRows(recordedPath).counts;
    for (const CountRow& row : recordedRows) {
        recorded.insert(row.key(), row.count);
    }

    out << QStringLiteral("%1 %2 %3 %4 %5 %6\n")
               .arg(QStringLiteral("program"), -23)
               .arg(QStringLiteral("operation"), -36)
               .arg(QStringLiteral("measure"), -21)
               .arg(QStringLiteral("recorded"), 12)
               .arg(QStringLiteral("now"), 12)
               .arg(QStringLiteral("change"), 9);
    int failures = 0;
    int improvements = 0;
    int unmetLimits = 0;
    for (const CountRow& row : counts) {
        programs.insert(row.program);
        unmetLimits += row.isWithinLimit() ? 0 : 1;
        const auto before = recorded.constFind(row.key());
        if (before == recorded.cend()) {
            printRow(out, row, QStringLiteral("-"), QString(), QStringLiteral("NOT RECORDED"));
            ++failures;
            continue;
        }
        QString verdict;
        if (grew(row, *before)) {
            verdict = QStringLiteral("GREW");
            ++failures;
        } else if (fell(row, *before)) {
            verdict = QStringLiteral("less");
            ++improvements;
        }
        printRow(out, row, number(*before), change(row.count, *before), verdict);
        recorded.remove(row.key());
    }
    for (const CountRow& row : recordedRows) {
        if (recorded.contains(row.key()) && (isWhole || programs.contains(row.program))) {
            out << "recorded, but no longer counted: " << row.program << ", " << row.operation
                << ", " << row.measure << '\n';
            ++failures;
        }
    }
    printEnvironment(out, recordedPath);
    out << '\n'
        << counts.size() << " counts; " << failures << " grew or do not fit the record, "
        << improvements << " fell; " << unmetLimits << " above the limit that is aimed at\n";
    if (failures == 0 && improvements > 0) {
        out << "Keep what was gained: script/bench --counts --record\n";
    }
    return failures == 0;
}
