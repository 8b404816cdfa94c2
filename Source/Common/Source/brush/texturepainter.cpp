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
constexpr double cnMaxPixel = 1e12;

constexpr double cnFullStep = XCFastPixelMixer::cnFixFloatConstant;
constexpr double cnHalfStep = cnFullStep / 2.0;

/// A line as the mixer walks it: whole units of 1.15, after `skipped` steps from x on.
struct FixedLine {
    FixedLine(const SourceLine& line, double x, double stepScale, std::int64_t steps)
        : du(std::nearbyint(line.du * stepScale)), dv(std::nearbyint(line.dv * stepScale)),
          u(std::nearbyint((line.u + (x - line.x) * line.du) * cnFullStep) + du * static_cast<double>(steps)),
          v(std::nearbyint((line.v + (x - line.x) * line.dv) * cnFullStep) + dv * static_cast<double>(steps)) {}

    double du; ///< a step
    double dv;
    double u;
    double v;
};

} // namespace

std::int64_t pixelsBefore(double value, double offset) {
    const double pixels = std::ceil(value - offset);
    return pixels >= -cnMaxPixel ? static_cast<std::int64_t>(std::min(pixels, cnMaxPixel))
                                 : static_cast<std::int64_t>(-cnMaxPixel);
}

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
        const std::int64_t pieceStart = x - (x - span.start) % cnPiece;
        const std::int64_t end = std::min(pieceStart + cnPiece, to);
        aim(span.line, span.lineB, static_cast<double>(pieceStart), x - pieceStart);
        m_mixer.DoLineRowCopy(imageX(x), imageX(end), static_cast<int>(span.y + m_origin.y), &m_source);
        x = end;
    }
    return true;
}

/// Sets the mixer's source place for the pixel `skipped` pixels after the one that begins at pieceX.
void TexturePainter::aim(const SourceLine& line, const SourceLine& lineB, double pieceX, std::int64_t skipped) {
    if (!m_isAntialiased) {
        const FixedLine a(line, pieceX + m_offset, cnFullStep, skipped);
        return m_mixer.SetSrcUVParam(a.u / cnFullStep, a.v / cnFullStep, a.du / cnFullStep, a.dv / cnFullStep);
    }
    const FixedLine a(line, pieceX + cnFirstQuarter, cnHalfStep, 2 * skipped);
    const FixedLine b(lineB, pieceX + cnFirstQuarter, cnHalfStep, 2 * skipped);
    m_mixer.SetSrcUVParamAntiAlias(a.u / cnFullStep, a.v / cnFullStep, a.du / cnHalfStep, a.dv / cnHalfStep,
                                   b.u / cnFullStep, b.v / cnFullStep, b.du / cnHalfStep, b.dv / cnHalfStep);
}

} // namespace ovw::brush
