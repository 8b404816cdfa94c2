// Whole rectangles of one colour through the mixer, beside memset and memcpy of as many bytes.

#include "canvas.h"
#include "duel.h"

#include <ovwcmn/xcfastpixelmixer.h>
#include <ovwcmn/xcvoffscreenlock.h>

namespace {

using Mixer = XCFastPixelMixer;

struct Fill {
    const char* name;
    int composition;
    std::uint32_t color;
    double aim;
};

constexpr Fill cnFills[] = {
    {"Replace", Mixer::Replace, 0xFF1E50C8, 0.70},
    {"Normal opaque", Mixer::Normal, 0xFF1E50C8, 0.25},
    {"Normal half", Mixer::Normal, 0x801E50C8, 0.25},
};

void fill(benchmark::State& state, const Fill& what, int side) {
    ovwbench::Canvas canvas(side);
    ovwbench::PlainMemory plain(static_cast<std::size_t>(side) * static_cast<std::size_t>(side) * 4);
    Mixer mixer;
    mixer.SetDstOffscreen(&canvas.image());
    mixer.SetDrawCompositioin(what.composition);
    mixer.SetColor(what.color);
    const bool replaces = what.composition == Mixer::Replace;
    ovwbench::Duel duel;
    duel.unit = "Mpixel";
    duel.amount = canvas.megapixels();
    duel.work = [&] {
        XCVOffscreenAutoLock lock(&canvas.image(), 0, 0, 1);
        canvas.image().RectFill(canvas.image().GetRect(), &mixer, nullptr);
    };
    duel.limitName = replaces ? "memset" : "memcpy";
    duel.limit = [&] { replaces ? plain.set() : plain.copy(); };
    if (!replaces)
        duel.restore = [&] { canvas.restore(); };
    duel.aim = what.aim;
    ovwbench::run(state, duel);
}

const bool s_added = [] {
    for (const int side : {4096, 256}) {
        for (const Fill& what : cnFills) {
            ovwbench::add("fill/" + std::string(what.name) + "/" + std::to_string(side),
                          [&what, side](benchmark::State& state) { fill(state, what, side); });
        }
    }
    return true;
}();

} // namespace
