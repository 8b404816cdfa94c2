// Stamps of every kind of tip by size, anti-aliased and opaque, beside copying the rows of a disc of that size.

#include "duel.h"
#include "stamper.h"

#include <ovwcmn/xcvoffscreenlock.h>

#include <functional>
#include <memory>
#include <string>

namespace {

using ovwbench::Dab;

constexpr int cnSide = 2048;
constexpr int cnPictureSide = 64;

struct Kind {
    const char* name;
    std::unique_ptr<XCPattern> (*make)(ovwbench::Canvas& canvas);
};

template <class Tip>
std::unique_ptr<XCPattern> makeTip(ovwbench::Canvas&) {
    return std::make_unique<Tip>();
}

template <class Tip>
std::unique_ptr<XCPattern> makeSlantedTip(ovwbench::Canvas&) {
    auto tip = std::make_unique<Tip>();
    tip->SetParameter(1.0f, 0.4f, 0.6f);
    return tip;
}

std::unique_ptr<XCPattern> makeHexagon(ovwbench::Canvas&) {
    auto tip = std::make_unique<XCPolygonPattern>();
    tip->PresetPolygon(6, -1, 1, -1, 1);
    return tip;
}

/// A picture of a disc that is turned a little.
template <class Image>
std::unique_ptr<XCPattern> makePicture(ovwbench::Canvas& canvas) {
    Image picture;
    picture.Create(&canvas.store(), cnPictureSide, cnPictureSide, 72.0);
    {
        XCVOffscreenAutoLock lock(&picture, 0, 0, 1);
        for (int y = 0; y < cnPictureSide; y++)
            picture.FillLineRow(y / 4, cnPictureSide - y / 4, y, 0xFF1E50C8, nullptr);
    }
    auto tip = std::make_unique<XCImagePattern>();
    tip->ImportPatternOffscreen(&picture);
    tip->SetParameter(1.0f, 1.0f, 0.6f);
    return tip;
}

constexpr Kind cnKinds[] = {
    {"circle", makeTip<XCCirclePattern>},
    {"ellipse", makeSlantedTip<XCCirclePattern>},
    {"rectangle", makeSlantedTip<XCRectPattern>},
    {"hexagon", makeHexagon},
    {"picture of 1 bit", makePicture<XCVOffscreen1Bit>},
    {"picture of 8 bits", makePicture<XCVOffscreen8Bit>},
    {"picture of 32 bits", makePicture<XCVOffscreen32Bit>},
};

void stampTip(benchmark::State& state, const Kind& kind, int radius, int count) {
    ovwbench::Canvas canvas(cnSide);
    const std::unique_ptr<XCPattern> tip = kind.make(canvas);
    ovwbench::Stamper stamper(canvas, *tip, 2 * radius, false, {});
    ovwbench::DabCopy plain(cnSide);
    const std::vector<Dab> dabs = ovwbench::walk(cnSide, radius, count);
    ovwbench::Duel duel;
    duel.unit = "stamps";
    duel.amount = duel.items = static_cast<double>(dabs.size());
    duel.pixels = ovwbench::pixelsOf(dabs);
    duel.work = [&] { stamper.stamp(dabs); };
    duel.limitName = "memcpy of the disc";
    duel.limit = [&] { plain.copy(dabs); };
    duel.restore = [&] { canvas.restore(); };
    ovwbench::run(state, duel);
}

const bool s_added = [] {
    struct Size {
        int radius;
        int count;
    };
    for (const Kind& kind : cnKinds) {
        for (const auto [radius, count] : {Size{2, 10000}, Size{16, 2000}, Size{100, 100}})
            ovwbench::add("tip/" + std::string(kind.name) + "/radius " + std::to_string(radius),
                          [&kind, radius, count](benchmark::State& state) { stampTip(state, kind, radius, count); });
    }
    return true;
}();

} // namespace
