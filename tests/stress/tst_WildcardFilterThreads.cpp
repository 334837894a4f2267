#include "TestCase.h"
#include "WildcardFilter.h"

#include <QtCore/QVector>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

namespace {

constexpr int threadCount = 8;

struct Name
{
    QString text;
    bool isMatch;
};

// The lengths differ, so that no thread's name fits in the buffer of another thread.
QVector<Name> namesOfThread(int thread)
{
    const QString stem = QString(1 + 7 * thread, QChar('a' + thread));
    return {{stem + ".txt", true},
            {stem + ".txt.bin", false},
            {stem + ".TAR.gz", true},
            {"log" + stem, true},
            {"blog" + stem, false}};
}

WildcardFilter makeFilter()
{
    return WildcardFilter({"*.txt", "*.tar.?z", "[k-m]og*"}, QDir::Files);
}

// Calls a filter in each thread; returns the number of incorrect results.
int incorrectResults(int callsPerThread,
                     const std::function<const WildcardFilter&(int)>& filterOfThread)
{
    std::atomic<int> waiting(threadCount);
    std::atomic<int> incorrect(0);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&, thread] {
            const WildcardFilter& filter = filterOfThread(thread);
            const QVector<Name> names = namesOfThread(thread);
            --waiting;
            while (waiting > 0) { // all threads start together
                std::this_thread::yield();
            }
            for (int i = 0; i < callsPerThread; ++i) {
                const Name& name = names.at(i % names.size());
                if (filter.matchesFilters(name.text) != name.isMatch) {
                    ++incorrect;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return incorrect;
}

} // namespace

/*
 * Tests filters in many threads. QRegExp matching modifies the expression object, so these tests
 * crash or count incorrect results if threads share one.
 */
class tst_WildcardFilterThreads : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void filterMayBeShared();
    void copiesOfOneFilterAreIndependent();
    void equalFiltersAreIndependent();

private:
    static int callsPerThread() { return stressRounds(100000, 1000000); }
};

void tst_WildcardFilterThreads::filterMayBeShared()
{
    const WildcardFilter filter = makeFilter();
    QCOMPARE(incorrectResults(callsPerThread(),
                              [&filter](int) -> const WildcardFilter& { return filter; }),
             0);
}

void tst_WildcardFilterThreads::copiesOfOneFilterAreIndependent()
{
    const std::vector<WildcardFilter> filters(threadCount, makeFilter());
    QCOMPARE(incorrectResults(callsPerThread(),
                              [&filters](int thread) -> const WildcardFilter& {
                                  return filters.at(size_t(thread));
                              }),
             0);
}

void tst_WildcardFilterThreads::equalFiltersAreIndependent()
{
    std::vector<WildcardFilter> filters;
    for (int thread = 0; thread < threadCount; ++thread) {
        filters.push_back(makeFilter());
    }
    QCOMPARE(incorrectResults(callsPerThread(),
                              [&filters](int thread) -> const WildcardFilter& {
                                  return filters.at(size_t(thread));
                              }),
             0);
}

QTEST_GUILESS_MAIN(tst_WildcardFilterThreads)

#include "tst_WildcardFilterThreads.moc"
