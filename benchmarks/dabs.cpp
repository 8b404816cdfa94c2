// Round dabs through the drawing engine, hard and soft, with and without a stroke cache.

#include "dabcopy.h"
#include "duel.h"

#include <ovwcmn/xcfastpixelmixer.h>
#include <ovwcmn/xcpattern.h>
#include <ovwcmn/xcpatterndraw.h>
#include <ovwcmn/xcpatterndrawparam.h>

#include <cmath>
#include <random>

namespace {

using ovwbench::Dab;

constexpr int cnSide = 2048;
constexpr int cnFull = 255;
constexpr int cnHalf = 128;

struct Kind {
    int radius;
    int count; ///< of dabs in a repetition
    bool isSoft;
    bool usesCache;
};

/// A walk of steps of half a radius, turned back at the image's border.
std::vector<Dab> walk(int radius, int count) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> turn(-0.5, 0.5);
    std::vector<Dab> dabs;
    Dab dab{cnSide / 2.0, cnSide / 2.0, static_cast<double>(radius)};
    for (double angle = 0.3; static_cast<int>(dabs.size()) < count; angle += turn(random)) {
        const double x = dab.x + std::cos(angle) * radius / 2;
        const double y = dab.y + std::sin(angle) * radius / 2;
        if (x < radius || x > cnSide - radius || y < radius || y > cnSide - radius) {
            angle += 1.0;
            continue;
        }
        dab.x = x;
        dab.y = y;
        dabs.push_back(dab);
    }
    return dabs;
}

/// The engine, ready to paint single stamps.
class Stamper {
public:
    Stamper(ovwbench::Canvas& canvas, const Kind& kind) {
        m_before.Create(&canvas.store(), cnSide, cnSide, 72.0);
        canvas.copyFirstPixelsTo(m_before);
        m_method.SetOffscreen(&canvas.image(), 1, kind.usesCache ? &m_before : nullptr, &m_brush,
                              XCFastPixelMixer::Normal, 0, 1, 0, 0);
        m_engine.SetOffscreen({}, &m_method);
        m_method.BeginMethod();
        m_engine.BeginDraw(&m_brush);
        m_stamp.pattern = &m_tip;
        m_stamp.color = 0xFF1E50C8;
        m_stamp.size = static_cast<float>(2 * kind.radius);
        m_stamp.opacity = kind.isSoft ? cnHalf : cnFull;
        m_stamp.hardness = kind.isSoft ? cnHalf : cnFull;
        m_stamp.sizeScale = m_stamp.opacityScale = m_stamp.hardnessScale = m_stamp.intervalRatio = 1.0f;
        m_stamp.sizeFixed = m_stamp.hardnessFixed = m_stamp.overSampling = 1;
    }

    ~Stamper() {
        m_engine.EndDraw(nullptr);
        m_method.EndMethod();
    }

    void stamp(const std::vector<Dab>& dabs) {
        for (const Dab& dab : dabs) {
            m_stamp.x = dab.x;
            m_stamp.y = dab.y;
            XCRect changed;
            m_engine.PlotPattern(&changed, m_stamp, 1.0f, 0);
        }
    }

    /// The start of a stroke: an empty cache, its blocks in memory.
    void restore() {
        if (XCVOffscreen* cache = m_method.GetCacheOffscreen())
            ovwbench::clearBlocks(*cache);
    }

private:
    XCVOffscreen32Bit m_before;
    XCPatternDrawParam m_brush;
    XCPatternDrawMethod m_method;
    XCPatternDraw m_engine;
    XCCirclePattern m_tip;
    PLOTPATTERNPARAM m_stamp;
};

void stampDabs(benchmark::State& state, const Kind& kind) {
    ovwbench::Canvas canvas(cnSide);
    Stamper stamper(canvas, kind);
    ovwbench::DabCopy plain(cnSide);
    const std::vector<Dab> dabs = walk(kind.radius, kind.count);
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
