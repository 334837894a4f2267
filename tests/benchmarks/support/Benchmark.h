#ifndef BENCHMARKS_BENCHMARK_H
#define BENCHMARKS_BENCHMARK_H

#include <QtTest/QtTest>

#include <initializer_list>

/*
 * The rows of a benchmark: the library, always called "MiscTools", and its peers, which do the same
 * work by other means, at each size. A row is called "CONTENDER" or "CONTENDER, SIZE UNIT".
 */
namespace Benchmark {

// Prepares the work for a size, and calls one of the functions below that measure.
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

// In a directory that lives as long as the program.
inline QString path(const QString& name)
{
    static const QTemporaryDir directory(QDir::tempPath() + QStringLiteral("/bench-XXXXXX"));
    return directory.filePath(name);
}

// The path of a file there, which write fills unless the file exists.
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

// Counts log messages while it lives, and prints none: that would take longer than what is
// measured.
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

// Keeps the compiler from omitting the work whose result this is.
template <typename Value>
void keep(const Value& value)
{
    asm volatile("" : : "g"(&value) : "memory");
}

// First, check examines the result of a call with QCOMPARE, and the messages of that call are
// counted.
template <typename Call, typename Check>
void measureChecked(const Call& call, const Check& check, int messages = 0)
{
    const MessageCounter counter;
    check(call());
    QCOMPARE(counter.count, messages);
    if (!QTest::currentTestFailed()) {
        // So that the heap has what a call frees, whatever the check has allocated.
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

// For a call that takes as little as a round of Qt Test's own loop: rows whose size is a number of
// calls. The table shows what a single call takes.
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
