#ifndef BENCHMARKS_BENCHMARK_H
#define BENCHMARKS_BENCHMARK_H

#include <QtTest/QtTest>

#include <functional>
#include <initializer_list>

/*
 * The rows of a benchmark: the library, always called "MiscTools", and its peers, which do the same
 * work by other means, at each size. A row is called "CONTENDER" or "CONTENDER, SIZE UNIT".
 */
namespace Benchmark {

// Prepares the work for a size, and calls one of the functions below that measure.
using Run = void (*)(int size);

struct Contender
{
    const char* name;
    Run run;
};

void addRows(std::initializer_list<Contender> contenders, const char* unit = nullptr,
             std::initializer_list<int> sizes = {0});
void runRow();

constexpr int kibi = 1024;
constexpr int mebi = 1024 * kibi;

// In a directory that lives as long as the program.
QString path(const QString& name);
// The path of a file there, which write fills unless the file exists.
QString file(const QString& name, const std::function<void(QIODevice&)>& write);
QByteArray content(const QString& filePath);
QByteArray digest(const QString& filePath, QCryptographicHash::Algorithm algorithm);

// Counts log messages while it lives, and prints none: that would take longer than what is
// measured.
class MessageCounter
{
public:
    MessageCounter();
    ~MessageCounter();

    int count() const;

private:
    Q_DISABLE_COPY(MessageCounter)

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
    QCOMPARE(counter.count(), messages);
    if (!QTest::currentTestFailed()) {
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

Q_DECLARE_METATYPE(Benchmark::Run)

#endif
