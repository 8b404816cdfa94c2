#include "stamper.h"

#include <cmath>
#include <random>

namespace ovwbench {

namespace {

constexpr int cnFull = 255;
constexpr int cnHalf = 128;

} // namespace

std::vector<Dab> walk(int side, int radius, int count) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> turn(-0.5, 0.5);
    std::vector<Dab> dabs;
    Dab dab{side / 2.0, side / 2.0, static_cast<double>(radius)};
    for (double angle = 0.3; static_cast<int>(dabs.size()) < count; angle += turn(random)) {
        const double x = dab.x + std::cos(angle) * radius / 2;
        const double y = dab.y + std::sin(angle) * radius / 2;
        if (x < radius || x > side - radius || y < radius || y > side - radius) {
            angle += 1.0;
            continue;
        }
        dab.x = x;
        dab.y = y;
        dabs.push_back(dab);
    }
    return dabs;
}

Stamper::Stamper(Canvas& canvas, XCPattern& tip, int size, bool isSoft, const Settings& settings) {
    m_before.Create(&canvas.store(), canvas.side(), canvas.side(), 72.0);
    canvas.copyFirstPixelsTo(m_before);
    m_brush.SetDesignatedPattern(&tip);
    m_method.SetOffscreen(&canvas.image(), 1, settings.usesCache ? &m_before : nullptr, &m_brush, settings.composition,
                          0, 1, 0, 0);
    if (settings.prepare)
        settings.prepare(m_method);
    m_engine.SetOffscreen({}, &m_method);
    m_method.BeginMethod();
    m_engine.BeginDraw(&m_brush);
    m_stamp.pattern = &tip;
    m_stamp.color = 0xFF1E50C8;
    m_stamp.size = static_cast<float>(size);
    m_stamp.opacity = isSoft ? cnHalf : cnFull;
    m_stamp.hardness = isSoft ? cnHalf : cnFull;
    m_stamp.sizeScale = m_stamp.opacityScale = m_stamp.hardnessScale = m_stamp.intervalRatio = 1.0f;
    m_stamp.sizeFixed = m_stamp.hardnessFixed = m_stamp.overSampling = 1;
}

Stamper::~Stamper() {
    m_engine.EndDraw(nullptr);
    m_method.EndMethod();
}

void Stamper::stamp(const std::vector<Dab>& dabs) {
    for (const Dab& dab : dabs) {
        m_stamp.x = dab.x;
        m_stamp.y = dab.y;
        XCRect changed;
        m_engine.PlotPattern(&changed, m_stamp, 1.0f, 0);
    }
}

void Stamper::restore() {
    if (XCVOffscreen* cache = m_method.GetCacheOffscreen())
        clearBlocks(*cache);
}

} // namespace ovwbench
