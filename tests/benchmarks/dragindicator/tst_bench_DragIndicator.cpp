#include "Benchmark.h"
#include "DragIndicator.h"

using namespace Benchmark;

class tst_bench_DragIndicator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void compute_data();
    void compute() { runRow(); }
    void computeOnCopy_data();
    void computeOnCopy() { runRow(); }
};

namespace {

DragIndicator indicator()
{
    DragIndicator result;
    result.compute(-100);
    result.compute(100);
    return result;
}

struct Extremes
{
    double min = -100;
    double max = 100;
    bool isInitialized = true;
};

} // namespace

// A value within the range changes nothing.
void tst_bench_DragIndicator::compute_data()
{
    const auto misctools = [](int calls) {
        DragIndicator subject = indicator();
        measureCalls(
            calls, [&] { return subject.compute(1.5); }, false);
    };
    const auto comparisons = [](int calls) {
        const Extremes records[2];
        const auto compute = [&records] {
            bool isChanged = false;
            for (const Extremes& each : records) {
                keep(each);
                isChanged = isChanged || !each.isInitialized || each.max < 1.5 || each.min > 1.5;
            }
            return isChanged;
        };
        measureCalls(calls, compute, false);
    };
    addRows({{"MiscTools", misctools}, {"comparisons alone", comparisons}}, "calls", {1000});
}

// A copy shares its records with the original until they change.
void tst_bench_DragIndicator::computeOnCopy_data()
{
    const auto misctools = [](int calls) {
        const DragIndicator original = indicator();
        measureCalls(
            calls, [&] { return DragIndicator(original).compute(1.5); }, false);
    };
    addRows({{"MiscTools", misctools}}, "calls", {1000});
}

QTEST_GUILESS_MAIN(tst_bench_DragIndicator)
#include "tst_bench_DragIndicator.moc"
