#ifndef BENCHMARKS_BENCHMARK_H
#define BENCHMARKS_BENCHMARK_H

#include <QtTest/QtTest>

#include <initializer_list>

/*
 * The rows of a benchmark: at each size, the library, always named "MiscTools", and its peers,
 * which do the same work without the library. Rows are named "CONTENDER" or "CONTENDER, SIZE UNIT".
 */
namespace Benchmark {

// Prepares the work for a size and calls one of the measuring functions below.
using Run = void (*)(int size);

} // namespace Benchmark

Q_DECLARE_METATYPE(Benchmark::Run)

namespace Benchmark {

class Rows
{
public:
    explicit Rows(const QByteArray& unit = QByteArray(), std::initializer_list<int> sizes = {0})
        : m_unit(unit), m_sizes(sizes)
    {
        QTest::addColumn<Run>("run");
        QTest::addColumn<int>("size");
    }

    void add(const QByteArray& contender, Run run) const
    {
        for (const int size : m_sizes) {
            const QByteArray suffix = ", " + QByteArray::number(size) + ' ' + m_unit;
            QTest::newRow(contender + (m_unit.isEmpty() ? "" : suffix)) << run << size;
        }
    }

private:
    QByteArray m_unit;
    QVector<int> m_sizes;
};

inline void runRow()
{
    QFETCH(Run, run);
    QFETCH(int, size);
    run(size);
}

constexpr int kibi = 1024;
constexpr int mebi = 1024 * kibi;

// In a directory that exists as long as the program runs.
inline QString path(const QString& name)
{
    static const QTemporaryDir directory(QDir::tempPath() + QStringLiteral("/bench-XXXXXX"));
    return directory.filePath(name);
}

// The path of a file in that directory; write creates its content unless the file exists.
template <typename Write>
QString file(const QString& name, const Write& write)
{
    QFile file(path(name));
    if (!file.exists()) {
        if (!file.open(QIODevice::WriteOnly)) {
            qFatal("cannot write %s", qPrintable(file.fileName()));
        }
        write(file);
    }
    return file.fileName();
}

inline QByteArray content(const QString& filePath)
{
    QFile file(filePath);
    return file.open(QIODevice::ReadOnly | QIODevice::Text) ? file.readAll() : QByteArray();
}

inline QByteArray digest(const QString& filePath, QCryptographicHash::Algorithm algorithm)
{
    QFile file(filePath);
    QCryptographicHash hash(algorithm);
    return file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result() : QByteArray();
}

// Counts log messages during its lifetime without printing them, which would take longer than the
// measured work.
class MessageCounter
{
public:
    MessageCounter() : m_previousHandler(qInstallMessageHandler(&countMessage)) { count = 0; }
    ~MessageCounter() { qInstallMessageHandler(m_previousHandler); }

    static inline int count = 0;

private:
    Q_DISABLE_COPY(MessageCounter)

    static void countMessage(QtMsgType, const QMessageLogContext&, const QString&) { ++count; }

    QtMessageHandler m_previousHandler;
};

// Keeps the compiler from optimizing away the work with this result.
template <typename Value>
void keep(const Value& value)
{
    asm volatile("" : : "g"(&value) : "memory");
}

// Before the measurement, check verifies the result of one call with QCOMPARE, and the messages of
// that call are counted.
template <typename Call, typename Check>
void measureChecked(const Call& call, const Check& check, int messages = 0)
{
    const MessageCounter counter;
    check(call());
    QCOMPARE(counter.count, messages);
    if (!QTest::currentTestFailed()) {
        // After this call, the state of the heap does not depend on the check.
        keep(call());
        QBENCHMARK
        {
            keep(call());
        }
    }
}

template <typename Call, typename Result>
void measure(const Call& call, const Result& expected, int messages = 0)
{
    const auto check = [&expected](const Result& result) { QCOMPARE(result, expected); };
    measureChecked(call, check, messages);
}

// For a call that is as fast as an iteration of Qt Test's loop: the size of a row is the number of
// calls, and the table shows the time of a single call.
template <typename Call, typename Result>
void measureCalls(int calls, const Call& call, const Result& expected)
{
    const auto all = [calls, &call] {
        for (int i = 1; i < calls; ++i) {
            keep(call());
        }
        return call();
    };
    measure(all, expected);
}

} // namespace Benchmark

#endif
