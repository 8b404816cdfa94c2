#include "duel.h"

#include "allocations.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <vector>

namespace ovwbench {

namespace {

using Clock = std::chrono::steady_clock;

/// Seconds that a workload and its limit are timed for together, and the most that a measurement may take.
constexpr double cnTimed = 0.6;
constexpr double cnPatience = 4.0;
constexpr std::size_t cnLeastRounds = 7;
/// Shorter work is called several times between two looks at the clock.
constexpr double cnShortestSample = 50e-6;

double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

/// Seconds of one of `calls` calls.
double timed(const std::function<void()>& call, int calls) {
    const auto start = Clock::now();
    for (int i = 0; i < calls; i++)
        call();
    return secondsSince(start) / calls;
}

int callsOfOneSample(const std::function<void()>& call) {
    const double once = std::max(timed(call, 1), 1e-9);
    return static_cast<int>(std::clamp(std::ceil(cnShortestSample / once), 1.0, 10000.0));
}

double median(std::vector<double>& values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

struct Medians {
    double work;        ///< seconds a call
    double limit;       ///< seconds a call
    double allocations; ///< a call of `work`
};

Medians takeTurns(const Duel& duel) {
    const auto restore = [&] {
        if (duel.restore)
            duel.restore();
    };
    // Once in advance: tables, caches and the pages of buffers come into being.
    restore();
    duel.work();
    duel.limit();
    const int workCalls = duel.restore ? 1 : callsOfOneSample(duel.work);
    const int limitCalls = callsOfOneSample(duel.limit);
    std::vector<double> work, limit;
    std::uint64_t allocations = 0;
    const auto start = Clock::now();
    for (double sum = 0.0; work.size() < cnLeastRounds || (sum < cnTimed && secondsSince(start) < cnPatience);) {
        restore();
        const std::uint64_t before = allocationCount();
        const double seconds = timed(duel.work, workCalls);
        allocations += allocationCount() - before;
        work.push_back(seconds);
        limit.push_back(timed(duel.limit, limitCalls));
        sum += work.back() * workCalls + limit.back() * limitCalls;
    }
    const double calls = static_cast<double>(work.size()) * workCalls;
    return {median(work), median(limit), static_cast<double>(allocations) / calls};
}

} // namespace

void run(benchmark::State& state, const Duel& duel) {
    for (auto iteration : state) {
        (void)iteration;
        const Medians medians = takeTurns(duel);
        state.SetIterationTime(medians.work);
        state.counters[cnFigure] = duel.amount / medians.work;
        state.counters[cnLimit] = duel.amount / medians.limit;
        state.counters[cnRatio] = medians.limit / medians.work;
        state.counters[cnAim] = duel.aim;
        state.counters[cnAimedFigure] = duel.aimedFigure;
        state.counters[cnPixels] = duel.pixels / medians.work / 1e6;
        state.counters[cnAllocations] = medians.allocations / duel.items;
    }
    state.SetLabel(duel.unit + "/s" + cnLabelSeparator + duel.limitName);
}

void add(const std::string& name, std::function<void(benchmark::State&)> body) {
    benchmark::RegisterBenchmark(name.c_str(), std::move(body))->Iterations(1)->UseManualTime();
}

} // namespace ovwbench
