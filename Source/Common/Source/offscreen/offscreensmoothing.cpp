#include "foundation/nomemory.h"
#include "offscreen/smoothblends.h"
#include "offscreen/smoothlines.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcoffscreen.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

/// Morphological anti-aliasing: lines are cut into runs of similar colour; where the run of one line begins or ends
/// inside that of the next, the half of the step at the end takes on, by a ramp, the colour that continues beside it.

using namespace ovw::offscreen;
using ovw::foundation::orNoMemory;

namespace {

/// One end of a run, from which positions are counted inwards.
struct Side {
    int origin;
    int direction;

    int at(int i) const { return origin + direction * i; }
};

/// What a neighbouring line has for a run.
struct Beside {
    const ArgbPixel* pixels = nullptr; // by position; null when there is no such line
    int startStep = 0;                 // length of the step at the run's start, 0 for none
    int endStep = 0;
    bool reachesStart = false; // a similar run goes on before the run's start
    bool reachesEnd = false;
};

ArgbPixel pixelOf(const tagVXRGBCOLOR& colour) {
    return {byteOf(colour.alpha), byteOf(colour.red), byteOf(colour.green), byteOf(colour.blue)};
}

constexpr int halfOf(int step) { return (step + 1) / 2; }

/// One pass over the lines of a direction.
class SmoothPass {
public:
    SmoothPass(const PixelView& view, SmoothBlends& blends, SmoothLines& lines)
        : m_view(view), m_blends(blends), m_lines(lines), m_found(static_cast<std::size_t>(lines.to())) {}

    void run(int firstLine, int lastLine) {
        m_lines.enter(firstLine);
        for (m_line = firstLine; m_line < lastLine; ++m_line) {
            m_lines.advance();
            if (m_line + 1 < lastLine)
                m_lines.enter(m_line + 1);
            else
                m_lines.forgetNext();
            smoothLine();
        }
    }

private:
    using Kind = SmoothedPixel::Kind;

    static Kind kindOf(int step) { return step == 1 ? Kind::diagonal : Kind::whole; }

    void smoothLine() {
        const int count = m_lines.runCount(0);
        // Lines of one run each have no steps.
        if (count <= 1 && m_lines.runCount(-1) <= 1 && m_lines.runCount(1) <= 1)
            return;
        m_current = m_lines.pixels(0);
        for (int number = 0; number < count; ++number)
            smoothRun(m_lines.run(0, number));
        for (const int p : m_touched) {
            SmoothedPixel& found = m_found[static_cast<std::size_t>(p)];
            if (m_lines.isVertical())
                m_blends.add(m_line, m_view.height - p - 1, m_current[p], found);
            else
                m_blends.add(p, m_line, m_current[p], found);
            found = SmoothedPixel();
        }
        m_touched.clear();
    }

    void smoothRun(const _LData& run) {
        const Beside before = look(run, -1);
        const Beside after = look(run, 1);
        const Side start{run.start, 1};
        const Side end{run.end - 1, -1};
        // The longer step wins where both lines have one, so that no line goes before the other.
        const int startStep =
            std::max(admitted(before, start, before.startStep), admitted(after, start, after.startStep));
        const int endStep = std::max(admitted(before, end, before.endStep), admitted(after, end, after.endStep));
        const bool shareMiddle = halfOf(startStep) + halfOf(endStep) > run.end - run.start;
        const ArgbPixel fromStart = blendStep(start, startStep, shareMiddle);
        const ArgbPixel fromEnd = blendStep(end, endStep, shareMiddle);
        if (shareMiddle)
            write(start.at(halfOf(startStep) - 1), {kindOf(startStep), averageOf(fromStart, fromEnd), {}});
        if (run.end - run.start >= 2 && isBetween(run, before, after))
            blendHalves(run, before.reachesStart || after.reachesStart, before.reachesEnd || after.reachesEnd);
    }

    /// Looks through the similar runs of a neighbouring line that overlap or touch the run.
    Beside look(const _LData& run, int line) const {
        Beside beside;
        const int count = m_lines.runCount(line);
        if (count == 0)
            return beside;
        beside.pixels = m_lines.pixels(line);
        const ArgbPixel colour = pixelOf(run.colour);
        for (int n = m_lines.runAt(line, std::max(run.start - 1, m_lines.from())); n < count; ++n) {
            const _LData& other = m_lines.run(line, n);
            if (other.start > run.end)
                break;
            if (findBorder(colour, pixelOf(other.colour), cnSimilarLevel))
                continue;
            // The first that begins and the last that ends: those nearest to the run's ends.
            if (other.start > run.start && beside.startStep == 0)
                beside.startStep = other.start - run.start;
            if (other.end < run.end)
                beside.endStep = run.end - other.end;
            beside.reachesStart |= other.start < run.start;
            beside.reachesEnd |= other.end > run.end;
        }
        return beside;
    }

    /// The pixel behind a side of a run; the run's own where the line ends.
    ArgbPixel partnerOf(const Side& side) const {
        const int position = side.at(-1);
        const bool isInside = position >= m_lines.from() && position < m_lines.to();
        return m_current[isInside ? position : side.origin];
    }

    /// The step if it is one: along its half, the run stands out from the neighbouring line, and that line goes on in
    /// the colour of the partner. Else 0.
    int admitted(const Beside& beside, const Side& side, int step) const {
        if (step == 0)
            return 0;
        ArgbPixel continued = partnerOf(side);
        for (int i = 0; i < halfOf(step); ++i) {
            const ArgbPixel other = beside.pixels[side.at(i)];
            if (!findBorder(m_current[side.at(i)], other, cnBorderLevel) ||
                findBorder(continued, other, cnSimilarLevel))
                return 0;
            continued = other;
        }
        return step;
    }

    /// Blends the half of a step with its partner: the pixel itself has the weight 1/2 + 1/(2 step) at the end and
    /// 1/step more with each pixel. Returns the blend of the last pixel, which is not written when keepLast is set.
    ArgbPixel blendStep(const Side& side, int step, bool keepLast) {
        const ArgbPixel partner = partnerOf(side);
        const std::int64_t total = std::int64_t{8} * step;
        bool isOpaque = partner.alpha != 0;
        ArgbPixel blend = {};
        for (int i = 0; i < halfOf(step); ++i) {
            const ArgbPixel own = m_current[side.at(i)];
            isOpaque &= own.alpha != 0;
            if (i == 0 && step >= 2) {
                write(side.at(i), {Kind::parts, Blend{total / 4 - 1, 1, total}(partner, own, isOpaque),
                                   Blend{total / 4 - 3, 3, total}(partner, own, isOpaque)});
                continue;
            }
            const bool isMiddle = step % 2 != 0 && i == halfOf(step) - 1;
            const std::int64_t weight = isMiddle ? total - 1 : total / 2 + 4 + std::int64_t{8} * i;
            blend = Blend{total - weight, weight, total}(partner, own, isOpaque);
            if (!isMiddle || !keepLast)
                write(side.at(i), {kindOf(step), blend, {}});
        }
        return blend;
    }

    /// Whether the run ends, as a U or a Z, between a line that it stands out from and one that goes on past an end.
    bool isBetween(const _LData& run, const Beside& before, const Beside& after) const {
        const auto goesOn = [](const Beside& beside) { return beside.reachesStart || beside.reachesEnd; };
        return (goesOn(after) && standsOut(run, before)) || (goesOn(before) && standsOut(run, after));
    }

    bool standsOut(const _LData& run, const Beside& beside) const {
        if (!beside.pixels)
            return false;
        for (int p = run.start; p < run.end; ++p)
            if (!findBorder(m_current[p], beside.pixels[p], cnBorderLevel))
                return false;
        return true;
    }

    void blendHalves(const _LData& run, bool atStart, bool atEnd) {
        const int half = (run.end - run.start) / 2;
        if (atStart && run.start > m_lines.from())
            blendHalf(Side{run.start, 1}, half);
        if (atEnd && run.end < m_lines.to())
            blendHalf(Side{run.end - 1, -1}, half);
    }

    /// The pixel itself has the weight 1/2 + 1/(8 half) at the end, and 1/(2 half) more with each pixel.
    void blendHalf(const Side& side, int half) {
        const ArgbPixel partner = partnerOf(side);
        const std::int64_t total = std::int64_t{8} * half;
        bool isOpaque = partner.alpha != 0;
        for (int i = 0; i < half; ++i) {
            const ArgbPixel own = m_current[side.at(i)];
            isOpaque &= own.alpha != 0;
            const std::int64_t weight = total / 2 + 1 + std::int64_t{4} * i;
            write(side.at(i), {Kind::whole, Blend{total - weight, weight, total}(partner, own, isOpaque), {}});
        }
    }

    /// What is found for a pixel later in a line replaces what was found before.
    void write(int position, const SmoothedPixel& found) {
        SmoothedPixel& at = m_found[static_cast<std::size_t>(position)];
        if (at.kind == Kind::none)
            m_touched.push_back(position);
        at = found;
    }

    const PixelView& m_view;
    SmoothBlends& m_blends;
    SmoothLines& m_lines;
    const ArgbPixel* m_current = nullptr; // by position
    int m_line = 0;
    std::vector<SmoothedPixel> m_found; // by position, on the current line
    std::vector<int> m_touched;         // the positions that have something there
};

bool canSmooth(int depth) { return depth == Argb32::cnBits || depth == Rgb24::cnBits; }

/// An image for the blends of another: the caller's, or a new one. What a new one holds does not matter.
class WorkImage {
public:
    WorkImage(XCOffscreen* given, const XCOffscreen& image) {
        if (!given) {
            m_own.Create(image.GetWidth(), image.GetHeight(), Argb32::cnBits, cnWhite, 0);
            given = &m_own;
        }
        if (given == &image || given->GetBitCount() != Argb32::cnBits || given->GetWidth() < image.GetWidth() ||
            given->GetHeight() < image.GetHeight())
            xcThrowError(ovw::foundation::cnCodeParameter);
        m_lock.emplace(given);
        m_view = PixelView(*given);
    }
    const PixelView& view() const { return m_view; }

private:
    XCOffscreen m_own;
    std::optional<ImageLock> m_lock; // ends before the image does
    PixelView m_view;
};

/// A table of a record for each of three lines at every position: the caller's, or a new one.
template <class Record>
class LineTable {
public:
    LineTable(Record (*given)[][SmoothLines::cnSlots], std::size_t length) {
        if (!given)
            m_own = orNoMemory([length] { return std::make_unique<Record[][SmoothLines::cnSlots]>(length); });
        m_table = given ? *given : m_own.get();
    }
    Record (*get() const)[SmoothLines::cnSlots] { return m_table; }

private:
    std::unique_ptr<Record[][SmoothLines::cnSlots]> m_own;
    Record (*m_table)[SmoothLines::cnSlots];
};

/// The area and one pixel around it, in the image.
XCRect workRect(const tagRECT* area, const XCRect& image) {
    if (!area)
        return image;
    XCRect rect;
    if (XCRect(*area).IsRectEmpty() || !rect.IntersectRect(*area, XCRect(-1, -1, image.right + 1, image.bottom + 1)))
        return XCRect();
    rect.IntersectRect(XCRect(rect.left - 1, rect.top - 1, rect.right + 1, rect.bottom + 1), image);
    return rect;
}

} // namespace

void XCOffscreen::DoSmoothing(tagRECT* area, XCOffscreen* work1, XCOffscreen* work2, _LData (*runs)[][3],
                              int (*runIndex)[][3]) {
    if (!canSmooth(m_info.bitCount))
        return;
    const ImageLock lock(this);
    const PixelView view(*this);
    if (work1 && work1 == work2)
        xcThrowError(ovw::foundation::cnCodeParameter);
    const WorkImage first(work1, *this);
    const WorkImage second(work2, *this);
    const auto length = static_cast<std::size_t>(std::max(view.width, view.height));
    const LineTable<_LData> runTable(runs, length);
    const LineTable<int> indexTable(runIndex, length);
    XCHandle marks;
    marks.Alloc(static_cast<std::uint32_t>(view.width) * static_cast<std::uint32_t>(view.height));
    const XCTAutoLockHandle<std::uint8_t> marksLock(marks);
    SmoothBlends blends(first.view(), second.view(), marksLock, view.width);
    const XCRect rect = workRect(area, view.rect());
    if (rect.IsRectEmpty())
        return;
    orNoMemory([&] {
        SmoothLines rows(view, runTable.get(), indexTable.get(), false, rect.left, rect.right);
        SmoothPass(view, blends, rows).run(rect.top, rect.bottom);
        SmoothLines columns(view, runTable.get(), indexTable.get(), true, view.height - rect.bottom,
                            view.height - rect.top);
        SmoothPass(view, blends, columns).run(rect.left, rect.right);
    });
    blends.mergeInto(view, rect);
}
