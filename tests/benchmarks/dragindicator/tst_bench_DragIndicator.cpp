#include "Benchmark.h"
#include "DragIndicator.h"

using namespace Benchmark;

namespace {

DragIndicator indicator()
{
    DragIndicator result;
    result.compute(-100);
    result.compute(100);
    return result;
}

} // namespace

class tst_bench_DragIndicator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // A value within the range changes nothing.
    void compute() { runRow(); }
    void compute_data()
    {
        const Rows rows("calls", {1000});
        rows.add("MiscTools", [](int calls) {
            DragIndicator subject = indicator();
            measureCalls(
                calls, [&] { return subject.compute(1.5); }, false);
        });
        rows.add("comparisons alone", [](int calls) {
            const double extremes[][2] = {{-100, 100}, {-100, 100}};
            const auto compute = [&extremes] {
                bool isChanged = false;
                for (const auto& [min, max] : extremes) {
                    keep(min);
                    isChanged = isChanged || max < 1.5 || min > 1.5;
                }
                return isChanged;
            };
            measureCalls(calls, compute, false);
        });
    }

    // A copy shares its records with the original until they change.
    void computeOnCopy() { runRow(); }
    void computeOnCopy_data()
    {
        const Rows rows("calls", {1000});
        rows.add("MiscTools", [](int calls) {
            const DragIndicator original = indicator();
            measureCalls(
                calls, [&] { return DragIndicator(original).compute(1.5); }, false);
        });
    }
};

QTEST_GUILESS_MAIN(tst_bench_DragIndicator)
#include "tst_bench_DragIndicator.moc"
