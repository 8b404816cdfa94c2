#ifndef OVWBENCH_DUEL_H
#define OVWBENCH_DUEL_H

/// @file
/// Timing a workload and its limit in turns.

#include <functional>
#include <string>

namespace benchmark {
class State;
}

namespace ovwbench {

/// A workload and what bounds it: the same bytes moved by the plainest means that memory or the system offers.
struct Duel {
    std::string unit; ///< of the figures, without "/s"
    double amount;    ///< of that unit, in one call of `work` and of `limit`
    std::function<void()> work;
    std::string limitName;
    std::function<void()> limit;
    std::function<void()> restore = {}; ///< untimed, before every call of `work`: paint must not pile up
    double aim = 0.0;                   ///< the share of the limit to reach; 0: none
    double aimedFigure = 0.0;           ///< the figure to reach, where the limit says little; 0: none
    double pixels = 0.0;                ///< painted by one call of `work`, for a second figure; 0: none
    double items = 1.0;                 ///< in one call of `work`; allocations are counted by item
};

/// Times both in turns (A B A B ...), so that other load on the machine meets both alike, and reports the medians.
void run(benchmark::State& state, const Duel& duel);

/// Adds a workload to the program. `body` sets up, calls `run` once, and cleans up.
void add(const std::string& name, std::function<void(benchmark::State&)> body);

/// What `run` reports, by the names of the counters and the order of the parts of the label.
inline constexpr const char* cnFigure = "figure";
inline constexpr const char* cnLimit = "limit";
inline constexpr const char* cnRatio = "ratio";
inline constexpr const char* cnAim = "aim";
inline constexpr const char* cnAimedFigure = "aimed figure";
inline constexpr const char* cnPixels = "Mpixel/s";
inline constexpr const char* cnAllocations = "allocations";
inline constexpr char cnLabelSeparator = '|'; ///< between the figures' unit and the name of the limit

} // namespace ovwbench

#endif // OVWBENCH_DUEL_H
