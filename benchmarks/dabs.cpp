// Round dabs through the drawing engine, hard and soft, with and without a stroke cache.

#include "duel.h"
#include "stamper.h"

#include <string>

namespace {

using ovwbench::Dab;

constexpr int cnSide = 2048;

struct Kind {
    int radius;
    int count; ///< of dabs in a repetition
    bool isSoft;
    bool usesCache;
};

void stampDabs(benchmark::State& state, const Kind& kind) {
    ovwbench::Canvas canvas(cnSide);
    XCCirclePattern tip;
    ovwbench::Stamper stamper(canvas, tip, 2 * kind.radius, kind.isSoft, {.usesCache = kind.usesCache});
    ovwbench::DabCopy plain(cnSide);
    const std::vector<Dab> dabs = ovwbench::walk(cnSide, kind.radius, kind.count);
    ovwbench::Duel duel;
    duel.unit = "dabs";
    duel.amount = duel.items = static_cast<double>(dabs.size());
    duel.pixels = ovwbench::pixelsOf(dabs);
    duel.work = [&] { stamper.stamp(dabs); };
    duel.limitName = "memcpy of the rows";
    duel.limit = [&] { plain.copy(dabs); };
    duel.restore = [&] {
        stamper.restore();
        canvas.restore();
    };
    ovwbench::run(state, duel);
}

const bool s_added = [] {
    struct Size {
        int radius;
        int count;
    };
    for (const bool isSoft : {false, true}) {
        for (const bool usesCache : {false, true}) {
            for (const auto [radius, count] : {Size{2, 20000}, Size{8, 5000}, Size{32, 1000}, Size{100, 200}}) {
                const Kind kind{radius, count, isSoft, usesCache};
                ovwbench::add(std::string("dab/") + (isSoft ? "soft" : "hard") + (usesCache ? " in cache" : "") +
                                  "/radius " + std::to_string(radius),
                              [kind](benchmark::State& state) { stampDabs(state, kind); });
            }
        }
    }
    return true;
}();

} // namespace
