#include "Benchmark.h"
#include "UniqueIdGenerator.h"

#include <atomic>

using namespace Benchmark;

class tst_bench_UniqueIdGenerator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void getId_data();
    void getId() { runRow(); }
};

void tst_bench_UniqueIdGenerator::getId_data()
{
    const auto misctools = [](int calls) {
        const auto nextId = [] { return int(UniqueIdGenerator::getInstance().getId()); };
        const int first = nextId();
        measureCalls(calls, nextId, first + calls);
    };
    const auto atomic = [](int calls) {
        std::atomic<int> last(0);
        measureCalls(
            calls, [&last] { return ++last; }, calls);
    };
    addRows({{"MiscTools", misctools}, {"std::atomic<int>, increment", atomic}}, "calls", {1000});
}

QTEST_GUILESS_MAIN(tst_bench_UniqueIdGenerator)
#include "tst_bench_UniqueIdGenerator.moc"
