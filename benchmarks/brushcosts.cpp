// What a texture, a mask, mixing with the ground and soft edges cost a brush, beside the same stamps without: the plain
// brush is cached and hard, as for paint that may not pile up within a stroke.

#include "duel.h"
#include "stamper.h"

#include <string>

namespace {

using ovwbench::Dab;
using ovwbench::Stamper;

constexpr int cnSide = 2048;
constexpr int cnRadius = 32;
constexpr int cnCount = 1000;
constexpr int cnTexels = 64;

/// What brushes paint through.
struct Materials {
    explicit Materials(ovwbench::Canvas& canvas) : texels(cnTexels * cnTexels) {
        for (std::size_t i = 0; i < texels.size(); i++)
            texels[i] = static_cast<std::uint8_t>(i * 37);
        mask.Create(&canvas.store(), cnSide, cnSide, 72.0);
        mask.RectFill(mask.GetRect(), 0, 0x90);
    }

    std::vector<std::uint8_t> texels;
    XCVOffscreen8Bit mask;
};

struct Cost {
    const char* name;
    bool isSoft;
    int composition;
    void (*prepare)(XCPatternDrawMethod& method, Materials& materials);
    double aim; ///< share of the plain brush's stamps
};

void prepareNothing(XCPatternDrawMethod&, Materials&) {}

template <int AfterCache>
void prepareTexture(XCPatternDrawMethod& method, Materials& materials) {
    method.SetTextureImage(materials.texels.data(), cnTexels, cnTexels, XCPoint(0, 0), 60, 1, AfterCache);
}

void prepareMask(XCPatternDrawMethod& method, Materials& materials) {
    method.SetMaskOffscreen(&materials.mask, XCPoint(0, 0));
}

constexpr Cost cnCosts[] = {
    {"soft", true, XCFastPixelMixer::Normal, prepareNothing, 1.0 / 3.0},
    {"texture before the cache", false, XCFastPixelMixer::Normal, prepareTexture<0>, 0.5},
    {"texture after the cache", false, XCFastPixelMixer::Normal, prepareTexture<1>, 0.5},
    {"mask of 8 bits", false, XCFastPixelMixer::Normal, prepareMask, 0.5},
    {"water", false, XCFastPixelMixer::Water, prepareNothing, 0.0},
    {"water and multiply", false, XCFastPixelMixer::WaterMultiply, prepareNothing, 0.0},
};

void compareBrushes(benchmark::State& state, const Cost& cost) {
    ovwbench::Canvas canvas(cnSide), plainCanvas(cnSide);
    Materials materials(canvas);
    XCCirclePattern tip, plainTip;
    Stamper stamper(canvas, tip, 2 * cnRadius, cost.isSoft,
                    {.usesCache = true, .composition = cost.composition, .prepare = [&](XCPatternDrawMethod& method) {
                         cost.prepare(method, materials);
                     }});
    Stamper plain(plainCanvas, plainTip, 2 * cnRadius, false, {.usesCache = true});
    const std::vector<Dab> dabs = ovwbench::walk(cnSide, cnRadius, cnCount);
    ovwbench::Duel duel;
    duel.unit = "stamps";
    duel.amount = duel.items = static_cast<double>(dabs.size());
    duel.pixels = ovwbench::pixelsOf(dabs);
    duel.work = [&] { stamper.stamp(dabs); };
    duel.limitName = "the plain brush";
    duel.limit = [&] { plain.stamp(dabs); };
    duel.restore = [&] {
        stamper.restore();
        canvas.restore();
        plain.restore();
        plainCanvas.restore();
    };
    duel.aim = cost.aim;
    ovwbench::run(state, duel);
}

const bool s_added = [] {
    for (const Cost& cost : cnCosts)
        ovwbench::add("brush/" + std::string(cost.name),
                      [&cost](benchmark::State& state) { compareBrushes(state, cost); });
    return true;
}();

} // namespace
