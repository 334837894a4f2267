#include "Timing.h"

#include <algorithm>
#include <chrono>

namespace {

using Clock = std::chrono::steady_clock;

struct Plan
{
    double roundTime; // the least that one contender takes in a round, in nanoseconds
    double totalTime; // of all rounds
    int minRounds;
    int maxRounds;
};

// Of what takes longer than that, one round is enough.
constexpr double longRound = 10e9;

constexpr Plan thorough = {10e6, 2e9, 5, 101};
constexpr Plan fast = {2e6, 0.3e9, 1, 21};

class ClockMeter : public Meter
{
public:
    void begin() override { m_begin = Clock::now(); }
    void end() override { m_time += Clock::now() - m_begin; }

    double nanoseconds() const { return std::chrono::duration<double, std::nano>(m_time).count(); }

private:
    Clock::time_point m_begin;
    Clock::duration m_time = Clock::duration::zero();
};

double timeOf(Contender& contender, qint64 calls)
{
    ClockMeter meter;
    contender.run(calls, meter);
    return meter.nanoseconds();
}

// A contender and what its rounds took.
struct Entry
{
    Contender& contender;
    qint64 calls = 1;
    std::vector<double> rounds = {}; // nanoseconds per call
};

// Finds the calls that fill a round; gives what that round took.
double calibrate(Entry& entry, double roundTime)
{
    double time = timeOf(entry.contender, entry.calls);
    while (time < roundTime) {
        entry.calls *= 2;
        time = timeOf(entry.contender, entry.calls);
    }
    return time;
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

} // namespace

std::vector<Timing::Result> Timing::time(const Operation& operation, bool quick)
{
    const Plan& plan = quick ? fast : thorough;
    std::deque<Contender> contenders = operation.contenders();
    std::vector<Entry> entries;
    double roundTime = 0;
    for (Contender& contender : contenders) {
        operation.check(contender, entries.empty());
        entries.push_back({contender});
        roundTime += calibrate(entries.back(), plan.roundTime);
    }

    const int minRounds = roundTime < longRound ? plan.minRounds : 1;
    const int rounds = std::clamp(int(plan.totalTime / roundTime), minRounds, plan.maxRounds);
    for (int round = 0; round < rounds; ++round) {
        // Each goes first in its turn: who follows another may find its data in the caches.
        for (std::size_t i = 0; i < entries.size(); ++i) {
            Entry& entry = entries[(i + std::size_t(round)) % entries.size()];
            entry.rounds.push_back(timeOf(entry.contender, entry.calls) / double(entry.calls));
        }
    }

    std::vector<Result> results;
    const double subjectTime = median(entries.front().rounds);
    for (const Entry& entry : entries) {
        const double time = median(entry.rounds);
        const double ratio = subjectTime / time;
        // A target is one of the table's row; a point of a plot may be too small to meet it.
        results.push_back({entry.contender.name(), time, ratio,
                           operation.isInTable() ? entry.contender.target() : 0,
                           entry.contender.isMet(ratio)});
    }
    return results;
}
