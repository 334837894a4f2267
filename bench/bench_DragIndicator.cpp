#include "DragIndicator.h"
#include "support/Program.h"

#include <array>
#include <memory>

namespace {

std::shared_ptr<DragIndicator> indicator()
{
    const auto result = std::make_shared<DragIndicator>();
    result->compute(-100);
    result->compute(100);
    return result;
}

// The comparisons alone.
struct Extremes
{
    double min = -100;
    double max = 100;
    bool isInitialized = true;
};

void addUnchanged(Contenders& contenders)
{
    contenders.subject([indicator = indicator()] { return indicator->compute(1.5); },
                       equals(false));
    const auto extremes = std::make_shared<std::array<Extremes, 2>>();
    contenders.peer(
        QStringLiteral("comparisons alone"),
        [extremes] {
            bool isChanged = false;
            for (const Extremes& each : *extremes) {
                keep(each);
                isChanged = isChanged || !each.isInitialized || each.max < 1.5 || each.min > 1.5;
            }
            return isChanged;
        },
        equals(false));
}

// A copy shares its records with the original until they change.
void addUnchangedCopy(Contenders& contenders)
{
    contenders.subject(
        [indicator = indicator()] {
            DragIndicator copy(*indicator);
            return copy.compute(1.5);
        },
        equals(false));
}

Operations operations()
{
    return {
        Operation(QStringLiteral("compute, nothing changes"), addUnchanged)
            .inTable()
            .counted(1000)
            // 40, and 9 of the loop that measures.
            .limit(Measure::Instructions, 90 + 9)
            .limit(Measure::Allocations, 0),
        Operation(QStringLiteral("compute on a copy, nothing changes"), addUnchangedCopy)
            .inTable()
            .counted(1000)
            .limit(Measure::Allocations, 0),
    };
}

} // namespace

int main(int argc, char* argv[])
{
    return Program::run(argc, argv, operations());
}
