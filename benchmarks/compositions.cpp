// The nineteen compositions through the mixer's stroke cache at 32 bits, beside Normal, and Normal beside memcpy of the
// destination's bytes. A pixel of these also reads the image as it was before, and reads and writes its coverage in the
// cache.

#include "canvas.h"
#include "duel.h"

#include <ovwcmn/xccoloraverage.h>
#include <ovwcmn/xcfastpixelmixer.h>
#include <ovwcmn/xcvoffscreenlock.h>

namespace {

using Mixer = XCFastPixelMixer;

constexpr int cnSide = 1024;
constexpr const char* cnNames[] = {"Replace",    "Normal",    "Erase",         "DarkenStep", "LightenStep",
                                   "Water",      "Multiply",  "WaterMultiply", "Add",        "Lighten",
                                   "Darken",     "ColorBurn", "ColorDodge",    "Screen",     "Overlay",
                                   "Difference", "SoftLight", "HardLight",     "AddFade"};

/// Compositions without a division or a power.
constexpr bool isSimple(int composition) {
    switch (composition) {
    case Mixer::Replace:
    case Mixer::Erase:
    case Mixer::DarkenStep:
    case Mixer::LightenStep:
    case Mixer::Multiply:
    case Mixer::Add:
    case Mixer::Lighten:
    case Mixer::Darken:
    case Mixer::Difference:
    case Mixer::AddFade: return true;
    default: return false;
    }
}

/// The images of a stroke beside its destination.
class StrokeImages {
public:
    StrokeImages(ovwbench::Canvas& canvas, int composition) : m_canvas(canvas) {
        m_cache.Create(&canvas.store(), cnSide, cnSide, 72.0);
        m_before.Create(&canvas.store(), cnSide, cnSide, 72.0);
        m_colors.Create(&canvas.store(), cnSide, cnSide, 72.0);
        canvas.copyFirstPixelsTo(m_before);
        mixer.SetDstOffscreen(&canvas.image());
        mixer.SetCacheOffscreen(&m_cache);
        mixer.SetCompositeOffscreen(&m_before);
        mixer.SetStyleFlag(Mixer::STYLE_CACHE_OVER, 1);
        mixer.SetDrawCompositioin(composition);
        m_isWater = composition == Mixer::Water || composition == Mixer::WaterMultiply;
        if (m_isWater) {
            mixer.SetCacheColorOffscreen(&m_colors);
            mixer.SetColorAverage(&m_average);
        }
        mixer.SetColor(0xC01E50C8);
        mixer.SetCacheAlpha(0.7f);
        mixer.SetMixAlpha(0.8f);
    }

    /// The start of a stroke: empty caches, the first pixels.
    void restore() {
        m_canvas.restore();
        ovwbench::clearBlocks(m_cache);
        if (m_isWater)
            m_canvas.copyFirstPixelsTo(m_colors);
    }

    void paint() {
        XCVOffscreenAutoLock canvas(&m_canvas.image(), 0, 0, 1);
        XCVOffscreenAutoLock cache(&m_cache, 0, 0, 1);
        XCVOffscreenAutoLock colors(&m_colors, 0, 0, m_isWater ? 1 : 0);
        XCVOffscreenAutoLock before(&m_before, 0, 0, 0);
        m_canvas.image().RectFill(m_canvas.image().GetRect(), &mixer, nullptr);
    }

    Mixer mixer;

private:
    ovwbench::Canvas& m_canvas;
    XCVOffscreen16Bit m_cache;
    XCVOffscreen32Bit m_before;
    XCVOffscreen32Bit m_colors;
    XCColorAverage m_average;
    bool m_isWater;
};

void composite(benchmark::State& state, int composition) {
    ovwbench::Canvas canvas(cnSide), normalCanvas(cnSide);
    StrokeImages images(canvas, composition), normal(normalCanvas, Mixer::Normal);
    ovwbench::PlainMemory plain(std::size_t{cnSide} * cnSide * 4);
    const bool isNormal = composition == Mixer::Normal;
    ovwbench::Duel duel;
    duel.unit = "Mpixel";
    duel.amount = canvas.megapixels();
    duel.work = [&] { images.paint(); };
    duel.limitName = isNormal ? "memcpy" : "Normal";
    duel.limit = [&] { isNormal ? plain.copy() : normal.paint(); };
    duel.restore = [&] {
        images.restore();
        if (!isNormal)
            normal.restore();
    };
    duel.aim = isSimple(composition) ? 0.5 : 0.0;
    ovwbench::run(state, duel);
}

const bool s_added = [] {
    int composition = 0;
    for (const char* name : cnNames) {
        ovwbench::add("composition/" + std::string(name),
                      [composition](benchmark::State& state) { composite(state, composition); });
        composition++;
    }
    return true;
}();

} // namespace
