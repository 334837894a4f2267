#include "Benchmark.h"
#include "UniqueIdGenerator.h"

#include <atomic>

using namespace Benchmark;

class tst_bench_UniqueIdGenerator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void getId() { runRow(); }
    void getId_data()
    {
        const Rows rows("calls", {1000});
        rows.add("MiscTools", [](int calls) {
            const auto nextId = [] { return int(UniqueIdGenerator::getInstance().getId()); };
            const int first = nextId();
            measureCalls(calls, nextId, first + calls);
        });
        rows.add("std::atomic<int>, increment", [](int calls) {
            std::atomic<int> last(0);
            measureCalls(
                calls, [&last] { return ++last; }, calls);
        });
    }
};

QTEST_GUILESS_MAIN(tst_bench_UniqueIdGenerator)
#include "tst_bench_UniqueIdGenerator.moc"
