#include "brush/ribbon.h"

#include "brush/stampbounds.h"
#include "ovwcmn/vxmath.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ovw::brush {

namespace {

constexpr tagPOINT cnImageOrigin{0, 0};
/// A bend is drawn in pieces that turn by no more than this, radians.
constexpr double cnTurnOfPiece = 0.12;
constexpr int cnMostTurns = 64;
constexpr double cnMostRepeats = 512.0;
/// What an anti-aliased ribbon covers in part lies within this many pixels of its sides.
constexpr double cnSoftMargin = 1.0;
/// Cross edges that are parallel within this do not meet.
constexpr double cnParallel = 1e-9;
/// Pieces are remembered that much narrower, pixels: the next one keeps the pixels on their common edge.
constexpr double cnShrink = 1e-6;

double turnBetween(double from, double to) { return vxRotOffCalc(vxRotNormal(from), vxRotNormal(to)); }

/// Whether the line through a side of `a` has `a` on one side and `b` on the other.
bool isPartedBySide(const RibbonTrail::Corners& a, const RibbonTrail::Corners& b) {
    for (std::size_t i = 0; i < a.size(); i++) {
        const auto cornerOf = [&](std::size_t step) -> const TTexMapVertex& { return a[(i + step) % a.size()]; };
        const TTexMapVertex& from = cornerOf(0);
        const TTexMapVertex& to = cornerOf(1);
        const auto sideOf = [&](const TTexMapVertex& corner) {
            return (to.x - from.x) * (corner.y - from.y) - (to.y - from.y) * (corner.x - from.x);
        };
        const double one = sideOf(cornerOf(2));
        const double other = sideOf(cornerOf(3));
        const double inner = one + other;
        if (inner != 0.0 && one * other >= 0.0 &&
            std::all_of(b.begin(), b.end(), [&](const TTexMapVertex& corner) { return sideOf(corner) * inner <= 0.0; }))
            return true;
    }
    return false;
}

bool canMeet(const RibbonTrail::Corners& a, const RibbonTrail::Corners& b) {
    return !isPartedBySide(a, b) && !isPartedBySide(b, a);
}

} // namespace

void RibbonTrail::add(const Corners& piece, double length, double width) {
    m_length += length;
    m_width = width;
    const MapOutline outline(piece);
    m_pieces.push_back({piece, outline, outline.pixels(cnImageOrigin), m_length});
    while (m_pieces.size() > cnMostPieces || m_length - m_pieces.front().end > cnMemory * m_width)
        m_pieces.pop_front();
}

void RibbonTrail::beginPiece(const Corners& piece, const XCRect& pixels) {
    m_near.clear();
    for (auto old = m_pieces.rbegin(); old != m_pieces.rend(); ++old)
        if (pixels.IsIntersectRect(old->pixels) && canMeet(old->corners, piece))
            m_near.push_back(&*old);
}

void RibbonTrail::markCovered(CoveredPixels& covered, std::int64_t y, std::int64_t from, std::int64_t to,
                              double offset) const {
    // Pixels outside openFrom <= x < openTo are known to be covered.
    std::int64_t openFrom = from;
    std::int64_t openTo = to;
    for (const Piece* piece : m_near) {
        if (y < piece->pixels.top || y >= piece->pixels.bottom || openFrom >= piece->pixels.right ||
            openTo <= piece->pixels.left)
            continue;
        double left = 0.0;
        double right = 0.0;
        if (!piece->outline.stretch(left, right, static_cast<double>(y) + offset))
            continue;
        const std::int64_t start = std::clamp(pixelsBefore(left + cnShrink, offset), from, to);
        const std::int64_t end = std::clamp(pixelsBefore(right - cnShrink, offset), start, to);
        std::fill(covered.begin() + (start - from), covered.begin() + (end - from), true);
        if (start <= openFrom)
            openFrom = std::max(openFrom, end);
        if (end >= openTo)
            openTo = std::min(openTo, start);
        if (openFrom >= openTo)
            return;
    }
}

/// The way of a ribbon from one end to the other: a cubic curve that leaves and arrives in the ends' directions.
class Ribbon::Course {
public:
    Course(const BENDPATTERNEND& first, const BENDPATTERNEND& second)
        : m_first(first), m_second(second), m_turn(turnBetween(first.direction, second.direction)),
          m_length(std::hypot(second.position.x - first.position.x, second.position.y - first.position.y)) {}

    /// @param t 0 at the first end, 1 at the second: these are exactly as given
    CrossEdge edgeAt(double t) const {
        const double direction = t >= 1.0 ? m_second.direction : m_first.direction + t * m_turn;
        const double width = t >= 1.0 ? m_second.width : m_first.width + t * (m_second.width - m_first.width);
        return {placeAt(t), {std::cos(direction), std::sin(direction)}, width * 0.5};
    }
    /// In how many pieces it is smooth.
    int turns() const {
        double turning = std::abs(m_turn);
        if (m_length > cnParallel) {
            const double chord =
                std::atan2(m_second.position.x - m_first.position.x, m_first.position.y - m_second.position.y);
            turning = std::max(turning, std::abs(turnBetween(m_first.direction, chord)) +
                                            std::abs(turnBetween(chord, m_second.direction)));
        }
        return std::clamp(1 + static_cast<int>(turning / cnTurnOfPiece), 1, cnMostTurns);
    }
    double length() const { return m_length; }

private:
    tagPOINTD placeAt(double t) const {
        if (t <= 0.0 || t >= 1.0)
            return t <= 0.0 ? m_first.position : m_second.position;
        const double rest = 1.0 - t;
        // Hermite's basis.
        const double atFirst = rest * rest * (1.0 + 2.0 * t);
        const double leaving = t * rest * rest * m_length;
        const double arriving = -t * t * rest * m_length;
        const auto blend = [&](double a, double b, double leave, double arrive) {
            return a * atFirst + b * (1.0 - atFirst) + leave * leaving + arrive * arriving;
        };
        return {
            blend(m_first.position.x, m_second.position.x, std::sin(m_first.direction), std::sin(m_second.direction)),
            blend(m_first.position.y, m_second.position.y, -std::cos(m_first.direction),
                  -std::cos(m_second.direction))};
    }

    const BENDPATTERNEND& m_first;
    const BENDPATTERNEND& m_second;
    double m_turn;
    double m_length;
};

Ribbon::Ribbon(TexturePainter& painter, int imageWidth, int imageHeight, int side, RibbonTrail* trail)
    : m_painter(painter), m_imageWidth(imageWidth), m_imageHeight(imageHeight), m_side(side), m_trail(trail) {}

XCRect Ribbon::paint(const BENDPATTERNEND& first, const BENDPATTERNEND& second) {
    const Course course(first, second);
    const int turns = course.turns();
    const double advance = std::clamp(second.along - first.along, 0.0, cnMostRepeats);
    // The image begins again at every whole number.
    double repeat = std::floor(first.along);
    const auto timeOfRepeatEnd = [&] {
        return advance > 0.0 ? (repeat + 1.0 - first.along) / advance : std::numeric_limits<double>::infinity();
    };
    CrossEdge from = course.edgeAt(0.0);
    double along = first.along - repeat;
    for (int turn = 0; turn < turns;) {
        const double nextTurn = turn + 1 == turns ? 1.0 : static_cast<double>(turn + 1) / turns;
        const double nextRepeat = timeOfRepeatEnd();
        const double t = std::min(nextTurn, nextRepeat);
        const CrossEdge to = course.edgeAt(t);
        const double alongTo = nextRepeat <= nextTurn ? 1.0 : first.along + t * advance - repeat;
        Piece piece{from, to, along, alongTo, false, 0.0, 0.0};
        findMeeting(piece);
        paintPiece(piece);
        from = to;
        along = alongTo;
        if (nextTurn <= nextRepeat)
            turn++;
        if (nextRepeat <= nextTurn) {
            repeat += 1.0;
            along = 0.0;
        }
    }
    return m_painted;
}

double Ribbon::margin() const { return m_painter.isAntialiased() ? cnSoftMargin : 0.0; }

/// Finds where the cross edges meet, if they do.
void Ribbon::findMeeting(Piece& piece) const {
    const tagPOINTD& rightFrom = piece.from.right;
    const tagPOINTD& rightTo = piece.to.right;
    const double turn = rightFrom.x * rightTo.y - rightFrom.y * rightTo.x;
    piece.meets = false;
    if (std::abs(turn) < cnParallel)
        return;
    const tagPOINTD way{piece.to.center.x - piece.from.center.x, piece.to.center.y - piece.from.center.y};
    piece.meetFrom = (way.x * rightTo.y - way.y * rightTo.x) / turn;
    piece.meetTo = (way.x * rightFrom.y - way.y * rightFrom.x) / turn;
    piece.meets =
        std::abs(piece.meetFrom) <= piece.from.half + margin() && std::abs(piece.meetTo) <= piece.to.half + margin();
}

void Ribbon::paintPiece(const Piece& piece) {
    if (!piece.meets)
        return paintHalf(piece, Half::Both);
    // The outside of the bend first: the inside is mostly covered by what came before.
    const bool isLeftOutside = piece.meetFrom + piece.meetTo >= 0.0;
    paintHalf(piece, isLeftOutside ? Half::Left : Half::Right);
    paintHalf(piece, isLeftOutside ? Half::Right : Half::Left);
}

void Ribbon::paintHalf(const Piece& piece, Half half) {
    const RibbonTrail::Corners corners = cornersOf(piece, half, {-margin(), 0.0, 0.0});
    const MapOutline outline(corners);
    const XCRect pixels = outline.pixels(cnImageOrigin);
    bool isDrawn = false;
    if (m_trail)
        m_trail->beginPiece(corners, pixels);
    m_painter.forEachRow(pixels, [&](std::int64_t y) {
        std::array<TextureSpan, 2> spans;
        std::int64_t start = 0;
        std::int64_t end = 0;
        if (!outline.spans(spans, y, m_painter.offset(), true, m_painter.isAntialiased()) ||
            !m_painter.cutToBlock(spans[0], start, end))
            return;
        const auto paint = [&](std::int64_t x, std::int64_t xEnd) { isDrawn |= m_painter.paint(spans[0], x, xEnd); };
        if (m_trail)
            m_trail->forEachUncovered(y, start, end, m_painter.offset(), paint);
        else
            paint(start, end);
    });
    if (isDrawn)
        unite(m_painted, pixels);
    if (m_trail)
        m_trail->add(cornersOf(piece, half, m_trail->inset()),
                     half == Half::Right
                         ? 0.0
                         : std::hypot(piece.to.center.x - piece.from.center.x, piece.to.center.y - piece.from.center.y),
                     2.0 * piece.to.half);
}

RibbonTrail::Corners Ribbon::cornersOf(const Piece& piece, Half half, const RibbonInset& inset) const {
    const auto leftOf = [&](const CrossEdge& edge) { return inset.pixels - edge.half * (1.0 - 2.0 * inset.left); };
    const auto rightOf = [&](const CrossEdge& edge) {
        return std::max(edge.half * (1.0 - 2.0 * inset.right) - inset.pixels, leftOf(edge));
    };
    const double leftFrom = half == Half::Right ? piece.meetFrom : leftOf(piece.from);
    const double leftTo = half == Half::Right ? piece.meetTo : leftOf(piece.to);
    const double rightFrom = half == Half::Left ? piece.meetFrom : rightOf(piece.from);
    const double rightTo = half == Half::Left ? piece.meetTo : rightOf(piece.to);
    return {corner(piece.from, std::min(leftFrom, rightFrom), piece.alongFrom),
            corner(piece.to, std::min(leftTo, rightTo), piece.alongTo), corner(piece.to, rightTo, piece.alongTo),
            corner(piece.from, rightFrom, piece.alongFrom)};
}

/// @param offset from the middle of the ribbon, to the right, pixels
TTexMapVertex Ribbon::corner(const CrossEdge& edge, double offset, double along) const {
    const double across = (offset + edge.half) / (2.0 * edge.half);
    const double x = edge.center.x + offset * edge.right.x;
    const double y = edge.center.y + offset * edge.right.y;
    switch (m_side) {
    case 1: return {x, y, (1.0 - along) * m_imageWidth, (1.0 - across) * m_imageHeight};
    case 2: return {x, y, (1.0 - across) * m_imageWidth, along * m_imageHeight};
    case 3: return {x, y, along * m_imageWidth, across * m_imageHeight};
    default: return {x, y, across * m_imageWidth, (1.0 - along) * m_imageHeight};
    }
}

} // namespace ovw::brush
