#include "Program.h"

#include "Counting.h"
#include "Messages.h"
#include "Timing.h"
#include "Workspace.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTextStream>

#include <memory>

namespace {

// A number with its unit, three digits or so.
QString readable(double nanoseconds)
{
    const struct
    {
        double size;
        const char* name;
    } units[] = {{1e9, "s"}, {1e6, "ms"}, {1e3, "us"}, {1, "ns"}};
    for (const auto& unit : units) {
        if (nanoseconds >= unit.size || unit.size <= 1) {
            return QStringLiteral("%1 %2")
                .arg(nanoseconds / unit.size, 0, 'f', 2)
                .arg(QLatin1String(unit.name), -2);
        }
    }
    return QString();
}

// Lines of fields, in a file that grows with each program.
class TsvFile
{
public:
    explicit TsvFile(const QString& filePath) : m_file(filePath)
    {
        const QIODevice::OpenMode mode = QIODevice::WriteOnly | QIODevice::Append;
        if (!filePath.isEmpty() && !m_file.open(mode)) {
            qFatal("cannot write %s", qPrintable(filePath));
        }
    }

    void append(const QStringList& fields)
    {
        if (m_file.isOpen()) {
            m_file.write((fields.join(QLatin1Char('\t')) + QLatin1Char('\n')).toUtf8());
        }
    }

private:
    QFile m_file;
};

QString programName()
{
    const QString prefix = QStringLiteral("bench_");
    return QFileInfo(QCoreApplication::arguments().constFirst()).fileName().mid(prefix.size());
}

QString verdict(const Timing::Result& result)
{
    if (result.target <= 0) {
        return QString();
    }
    return result.isMet ? QStringLiteral("yes") : QStringLiteral("NO");
}

void printHead(QTextStream& out)
{
    out << '\n' << programName() << '\n';
    out << QStringLiteral("%1 %2 %3 %4 %5 %6  met\n")
               .arg(QStringLiteral("  operation"), -46)
               .arg(QStringLiteral("subject"), 11)
               .arg(QStringLiteral("peer"), -36)
               .arg(QStringLiteral("peer"), 11)
               .arg(QStringLiteral("ratio"), 9)
               .arg(QStringLiteral("target"), 8);
}

void printRow(QTextStream& out, const Operation& operation, const Timing::Result& subject,
              const Timing::Result& peer)
{
    const QString target =
        peer.target > 0 ? QStringLiteral("<= ") + QString::number(peer.target) : QString();
    out << QStringLiteral("%1 %2 %3 %4 %5 %6  %7\n")
               .arg(QStringLiteral("  ") + operation.name(), -46)
               .arg(readable(subject.nanoseconds), 11)
               .arg(peer.contender, -36)
               .arg(peer.contender.isEmpty() ? QString() : readable(peer.nanoseconds), 11)
               .arg(peer.contender.isEmpty() ? QString() : QString::number(peer.ratio, 'f', 2), 9)
               .arg(target, 8)
               .arg(verdict(peer));
}

void time(const Operations& operations, bool quick, bool withPlots, TsvFile& tsv)
{
    QTextStream out(stdout);
    printHead(out);
    out.flush();
    for (const Operation& operation : operations) {
        if (!operation.isInTable() && !(withPlots && !operation.plot().isEmpty())) {
            continue;
        }
        const std::vector<Timing::Result> results = Timing::time(operation, quick);
        if (results.size() == 1) {
            printRow(out, operation, results.front(), {});
        }
        for (const Timing::Result& result : results) {
            tsv.append({QStringLiteral("time"), programName(), operation.name(),
                        operation.isInTable() ? QStringLiteral("table") : QString(),
                        operation.plot(), operation.unit(), QString::number(operation.size()),
                        result.contender, QString::number(result.nanoseconds, 'f', 2),
                        QString::number(result.ratio, 'f', 3), QString::number(result.target),
                        verdict(result)});
            if (&result != &results.front()) {
                printRow(out, operation, results.front(), result);
            }
        }
        out.flush();
    }
}

void count(const Operations& operations, TsvFile& tsv)
{
    const QMap<QString, Counting::Counts> counts = Counting::count(operations);
    for (const Operation& operation : operations) {
        const Counting::Counts& found = counts.value(operation.name());
        for (auto count = found.cbegin(); count != found.cend(); ++count) {
            const auto limit = operation.limits().constFind(count.key());
            tsv.append({QStringLiteral("count"), programName(), operation.name(),
                        nameOf(count.key()), QString::number(*count, 'f', 1),
                        limit != operation.limits().cend() ? QString::number(*limit) : QString()});
        }
    }
}

const Operation& find(const Operations& operations, const QString& name)
{
    for (const Operation& operation : operations) {
        if (operation.name() == name) {
            return operation;
        }
    }
    qFatal("there is no operation '%s'", qPrintable(name));
}

} // namespace

int Program::run(int argc, char* argv[], const Operations& operations)
{
    const QCoreApplication application(argc, argv);
    Messages::take();
    const QCommandLineOption quick(QStringLiteral("quick"));
    const QCommandLineOption plot(QStringLiteral("plot"));
    const QCommandLineOption counts(QStringLiteral("counts"));
    const QCommandLineOption runMarked(QStringLiteral("run-marked"));
    const QCommandLineOption peak(QStringLiteral("peak"), QString(), QStringLiteral("OPERATION"));
    const QCommandLineOption folder(QStringLiteral("folder"), QString(), QStringLiteral("FOLDER"));
    const QCommandLineOption tsvFile(QStringLiteral("tsv"), QString(), QStringLiteral("FILE"));
    QCommandLineParser parser;
    parser.addOptions({quick, plot, counts, runMarked, peak, folder, tsvFile});
    parser.process(application);

    // In memory, where that can be had: a disk would be measured instead.
    const QString memory = QStringLiteral("/dev/shm");
    const QString parent = QFileInfo(memory).isWritable() ? memory : QDir::tempPath();
    std::unique_ptr<QTemporaryDir> freshFolder;
    if (parser.isSet(folder)) {
        Workspace::use(QDir(parser.value(folder)).absolutePath());
    } else {
        freshFolder = std::make_unique<QTemporaryDir>(parent + QStringLiteral("/bench"));
        Workspace::use(freshFolder->path());
    }

    if (parser.isSet(runMarked)) {
        Counting::runMarked(operations);
    } else if (parser.isSet(peak)) {
        Counting::printPeak(find(operations, parser.value(peak)));
    } else {
        TsvFile tsv(parser.value(tsvFile));
        if (parser.isSet(counts)) {
            count(operations, tsv);
        } else {
            time(operations, parser.isSet(quick), parser.isSet(plot), tsv);
        }
    }
    return 0;
}
