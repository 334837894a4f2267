#include "Counting.h"

#include "Workspace.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QProcessEnvironment>
#include <QtCore/QRegularExpression>
#include <QtCore/QTextStream>

#include <valgrind/callgrind.h>

#include <malloc.h>
#include <unistd.h>

namespace {

const QString& runMarkedOption()
{
    static const QString option = QStringLiteral("--run-marked");
    return option;
}

// A system call that fails, and that strace shows with its text.
void mark(const QByteArray& text)
{
    if (write(-1, text.constData(), size_t(text.size())) != -1) {
        qFatal("a file of the number -1");
    }
}

class MarkingMeter : public Meter
{
public:
    explicit MarkingMeter(const QString& operation) : m_operation(operation.toUtf8()) {}

    void begin() override
    {
        mark("begin " + m_operation);
        CALLGRIND_START_INSTRUMENTATION;
    }

    void end() override
    {
        CALLGRIND_STOP_INSTRUMENTATION;
        mark("end");
    }

private:
    QByteArray m_operation;
};

// A number out of /proc/self/status, in KiB.
qint64 memoryStatus(const QByteArray& name)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) {
        qFatal("cannot read /proc/self/status");
    }
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith(name + ':')) {
            return line.mid(name.size() + 1).chopped(2).trimmed().toLongLong();
        }
    }
    qFatal("no %s in /proc/self/status", name.constData());
}

class PeakMeter : public Meter
{
public:
    void begin() override
    {
        malloc_trim(0);
        // The highest value is that of now from here on.
        Workspace::write(QStringLiteral("/proc/self/clear_refs"), "5");
        m_before = memoryStatus("VmRSS");
    }
    void end() override { m_peak = memoryStatus("VmHWM") - m_before; }

    qint64 peak() const { return m_peak; }

private:
    qint64 m_before = 0;
    qint64 m_peak = 0;
};

// Next to nothing: the length of what stands in it decides where memory lies, and so what some
// calls cost.
QProcessEnvironment smallEnvironment()
{
    QProcessEnvironment environment;
    environment.insert(QStringLiteral("PATH"), qEnvironmentVariable("PATH"));
    environment.insert(QStringLiteral("HOME"), QStringLiteral("/"));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    return environment;
}

QProcessEnvironment countingEnvironment()
{
    QProcessEnvironment environment = smallEnvironment();
    // Else it would depend on chance how many entries of a hash table share a place.
    environment.insert(QStringLiteral("QT_HASH_SEED"), QStringLiteral("0"));
    // Else the first call of each function would be dearer.
    environment.insert(QStringLiteral("LD_BIND_NOW"), QStringLiteral("1"));
    return environment;
}

// Runs a program and gives its output.
QByteArray run(const QString& program, const QStringList& arguments,
               const QProcessEnvironment& environment = countingEnvironment())
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(-1) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0) {
        qFatal("%s %s failed: %s", qPrintable(program),
               qPrintable(arguments.join(QLatin1Char(' '))),
               process.readAllStandardError().constData());
    }
    return process.readAllStandardOutput();
}

// This program, by a path whose length is the same wherever the project lies.
QStringList self(const QStringList& arguments)
{
    const QString program = QCoreApplication::applicationFilePath();
    const QString link = Workspace::path(QFileInfo(program).fileName());
    QFile::link(program, link); // unless it is there already
    return QStringList{link, QStringLiteral("--folder"), Workspace::folder()} + arguments;
}

QByteArray contentOf(const QString& filePath)
{
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("cannot read %s", qPrintable(filePath));
    }
    return file.readAll();
}

/*
 * Callgrind's file has a part for each operation, which ends with its totals and the operation's
 * name. A call is two lines, "cfn=" with the name and "calls=" with the number; functions of the
 * allocator call each other, and only calls from outside are allocations.
 */
void readCallgrind(const QByteArray& content, QMap<QString, Counting::Counts>& result)
{
    const QVector<QByteArray> allocators = {"malloc",   "calloc",         "realloc",
                                            "memalign", "posix_memalign", "aligned_alloc"};
    QString operation;
    QByteArray caller;
    QByteArray callee;
    for (const QByteArray& line : content.split('\n')) {
        const auto value = [&line](const char* key) { return line.mid(int(qstrlen(key))); };
        if (line.startsWith("part: ")) {
            operation.clear();
        } else if (line.startsWith("desc: Trigger: Client Request: ")) {
            operation = QString::fromUtf8(value("desc: Trigger: Client Request: "));
        } else if (operation.isEmpty()) {
            continue; // the part of the program's end
        } else if (line.startsWith("fn=")) {
            caller = value("fn=");
        } else if (line.startsWith("cfn=")) {
            callee = value("cfn=");
        } else if (line.startsWith("calls=") && allocators.contains(callee) &&
                   !allocators.contains(caller)) {
            result[operation][Measure::Allocations] +=
                value("calls=").split(' ').constFirst().toDouble();
        } else if (line.startsWith("totals: ")) {
            result[operation][Measure::Instructions] = value("totals: ").toDouble();
        }
    }
}

// Strace's file has a line for each system call, with the path of a file behind its number.
void readStrace(const QByteArray& content, QMap<QString, Counting::Counts>& result)
{
    static const QRegularExpression begin(QStringLiteral(R"re(^write\(-1, "begin (.*)", \d+\))re"));
    static const QRegularExpression read(
        QStringLiteral(R"re(^(?:read|pread64)\(\d+<([^>]*)>.*, (\d+)(?:, \d+)?\)\s+= )re"));
    QString operation;
    for (const QByteArray& lineBytes : content.split('\n')) {
        const QString line = QString::fromUtf8(lineBytes);
        const QRegularExpressionMatch beginMatch = begin.match(line);
        if (beginMatch.hasMatch()) {
            operation = beginMatch.captured(1);
            continue;
        }
        if (operation.isEmpty()) {
            continue;
        }
        if (line.startsWith(QStringLiteral("write(-1, \"end\""))) {
            operation.clear();
            continue;
        }
        result[operation][Measure::SystemCalls] += 1;
        const QRegularExpressionMatch readMatch = read.match(line);
        if (readMatch.hasMatch() && readMatch.captured(1).startsWith(Workspace::folder())) {
            result[operation][Measure::BytesAsked] += readMatch.captured(2).toDouble();
        }
    }
}

bool isAnyCounted(const Operations& operations)
{
    for (const Operation& operation : operations) {
        if (operation.countedCalls() > 0) {
            return true;
        }
    }
    return false;
}

// Numbered, as programs may be counted side by side.
QString outputFile(const QString& tool)
{
    return Workspace::path(tool + QLatin1Char('.') +
                           QString::number(QCoreApplication::applicationPid()));
}

// Sums over all calls of each operation.
QMap<QString, Counting::Counts> countUnderTools(const Operations& operations)
{
    QMap<QString, Counting::Counts> result;
    if (!isAnyCounted(operations)) {
        return result;
    }
    for (const Operation& operation : operations) {
        if (operation.countedCalls() > 0) {
            // What never happens has no line anywhere.
            result[operation.name()] = {{Measure::Allocations, 0}, {Measure::SystemCalls, 0}};
        }
    }
    const QString callgrindFile = outputFile(QStringLiteral("callgrind"));
    run(QStringLiteral("valgrind"),
        QStringList{QStringLiteral("--quiet"), QStringLiteral("--tool=callgrind"),
                    QStringLiteral("--instr-atstart=no"), QStringLiteral("--combine-dumps=yes"),
                    QStringLiteral("--compress-strings=no"), QStringLiteral("--compress-pos=no"),
                    QStringLiteral("--callgrind-out-file=") + callgrindFile} +
            self({runMarkedOption()}));
    readCallgrind(contentOf(callgrindFile), result);

    const QString straceFile = outputFile(QStringLiteral("strace"));
    run(QStringLiteral("strace"),
        QStringList{QStringLiteral("--decode-fds=path"), QStringLiteral("--string-limit=200"),
                    QStringLiteral("--trace=!%memory"), QStringLiteral("--output=") + straceFile} +
            self({runMarkedOption()}));
    readStrace(contentOf(straceFile), result);
    return result;
}

} // namespace

QMap<QString, Counting::Counts> Counting::count(const Operations& operations)
{
    for (const Operation& operation : operations) {
        if (operation.countedCalls() > 0 || operation.isPeakMeasured()) {
            // Makes the files: memory that this takes would not be given back to the system at
            // once, and so change what is counted.
            operation.contenders();
        }
    }
    const QMap<QString, Counts> sums = countUnderTools(operations);
    QMap<QString, Counts> result;
    for (const Operation& operation : operations) {
        const Counts& operationSums = sums.value(operation.name());
        for (auto sum = operationSums.cbegin(); sum != operationSums.cend(); ++sum) {
            result[operation.name()][sum.key()] = *sum / double(operation.countedCalls());
        }
        if (operation.isPeakMeasured()) {
            const QStringList command = self({QStringLiteral("--peak"), operation.name()});
            result[operation.name()][Measure::PeakMemory] =
                run(command.constFirst(), command.mid(1)).toDouble();
        }
        const auto& own = operation.ownMeasures();
        for (auto measure = own.cbegin(); measure != own.cend(); ++measure) {
            result[operation.name()][measure.key()] = double((*measure)());
        }
    }
    return result;
}

qint64 Counting::instructionsOf(const QString& program)
{
    const QString filePath = outputFile(QStringLiteral("callgrind"));
    run(QStringLiteral("valgrind"),
        {QStringLiteral("--quiet"), QStringLiteral("--tool=callgrind"),
         QStringLiteral("--callgrind-out-file=") + filePath, program},
        smallEnvironment());
    const QByteArray content = contentOf(filePath);
    const QByteArray key = "\ntotals: ";
    const int begin = content.lastIndexOf(key);
    if (begin < 0) {
        qFatal("no totals in %s", qPrintable(filePath));
    }
    return content.mid(begin + key.size()).trimmed().toLongLong();
}

void Counting::runMarked(const Operations& operations)
{
    for (const Operation& operation : operations) {
        if (operation.countedCalls() == 0) {
            continue;
        }
        std::deque<Contender> contenders = operation.contenders();
        Contender& subject = contenders.front();
        // Also the first call, which makes what later ones find ready.
        operation.check(subject, true);
        MarkingMeter meter(operation.name());
        CALLGRIND_ZERO_STATS;
        subject.run(operation.countedCalls(), meter);
        CALLGRIND_DUMP_STATS_AT(operation.name().toUtf8().constData());
    }
}

void Counting::printPeak(const Operation& operation)
{
    std::deque<Contender> contenders = operation.contenders();
    PeakMeter meter;
    contenders.front().run(1, meter);
    QTextStream(stdout) << meter.peak() << '\n';
}
