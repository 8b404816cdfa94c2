#include "brush/texturepainter.h"

#include "ovwcmn/xcvoffscreen.h"

#include <algorithm>
#include <cmath>

namespace ovw::brush {

namespace {

constexpr int cnMinSoftDepth = 8;
/// The mixer's steps are rounded: a line is aimed anew after this many pixels, counted from the span's start, so that
/// it neither drifts nor depends on where block borders cut it.
constexpr std::int64_t cnPiece = 256;

constexpr double cnFullStep = XCFastPixelMixer::cnFixFloatConstant;
constexpr double cnHalfStep = cnFullStep / 2.0;

/// std::nearbyint, for the numbers that occur without a call.
double nearest(double value) {
    constexpr double cnShift = 0x1.8p52; // a sum with it has no room for fractions
    return std::abs(value) < 0x1p51 ? (value + cnShift) - cnShift : std::nearbyint(value);
}

/// A line as the mixer walks it: whole units of 1.15, after `steps` steps from x on.
mixing::SampleLine sampleLine(const SourceLine& line, double x, double stepScale, std::int64_t steps) {
    const double du = nearest(line.du * stepScale);
    const double dv = nearest(line.dv * stepScale);
    const double u = nearest((line.u + (x - line.x) * line.du) * cnFullStep) + du * static_cast<double>(steps);
    const double v = nearest((line.v + (x - line.x) * line.dv) * cnFullStep) + dv * static_cast<double>(steps);
    return {truncateToInt(u), truncateToInt(v), truncateToInt(du), truncateToInt(dv)};
}

} // namespace

TexturePainter::TexturePainter(XCVOffscreen& target, XCFastPixelMixer& mixer, XCSimpleImage& source,
                               const tagPOINT& origin, double offset, bool antialias)
    : m_target(target), m_mixer(mixer), m_source(source), m_origin(origin), m_offset(offset),
      m_isAntialiased(antialias && canAntialias(target)),
      m_savedStyle(mixer.GetStyleFlag(XCFastPixelMixer::STYLE_ANTIALIAS)) {
    m_mixer.SetStyleFlag(XCFastPixelMixer::STYLE_ANTIALIAS, m_isAntialiased);
}

bool TexturePainter::canAntialias(const XCVOffscreen& target) { return target.GetDepth() >= cnMinSoftDepth; }

TexturePainter::~TexturePainter() { m_mixer.SetStyleFlag(XCFastPixelMixer::STYLE_ANTIALIAS, m_savedStyle); }

bool TexturePainter::cutToBlock(const TextureSpan& span, std::int64_t& from, std::int64_t& to) const {
    from = std::max(span.start, std::int64_t{m_block.left} - m_origin.x);
    to = std::min(span.end, std::int64_t{m_block.right} - m_origin.x);
    return from < to;
}

bool TexturePainter::paint(const TextureSpan& span, std::int64_t from, std::int64_t to) {
    std::int64_t blockFrom = 0;
    std::int64_t blockTo = 0;
    cutToBlock(span, blockFrom, blockTo);
    from = std::max(from, blockFrom);
    to = std::min(to, blockTo);
    if (from >= to)
        return false;
    const auto imageX = [this](std::int64_t x) { return static_cast<int>(x + m_origin.x); };
    for (std::int64_t x = from; x < to;) {
        const std::int64_t skipped = (x - span.start) % cnPiece;
        const std::int64_t end = std::min(x - skipped + cnPiece, to);
        const auto pieceX = static_cast<double>(x - skipped);
        mixing::SampleLine line;
        mixing::SampleLine lineB{};
        if (m_isAntialiased) {
            line = sampleLine(span.line, pieceX + cnFirstQuarter, cnHalfStep, 2 * skipped);
            lineB = sampleLine(span.lineB, pieceX + cnFirstQuarter, cnHalfStep, 2 * skipped);
        } else {
            line = sampleLine(span.line, pieceX + m_offset, cnFullStep, skipped);
        }
        m_rows->paint(imageX(x), imageX(end), static_cast<int>(span.y + m_origin.y), line, lineB);
        x = end;
    }
    return true;
}

} // namespace ovw::brush
