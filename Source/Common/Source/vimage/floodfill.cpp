// A scan-line seed fill with a stack of runs that wait to be explored. The order in which runs are pushed and popped,
// and that an explored row is judged by the source alone where it is skipped, decide which pixels a fill reaches when
// the destination holds the fill's value already in places: both are part of the result.

#include "vimage/floodfill.h"

#include "ovwcmn/detail/toint.h"
#include "ovwcmn/xcarray.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"
#include "vimage/floodpair.h"
#include "vimage/floodrows.h"
#include "vimage/withformat.h"

#include <algorithm>

namespace ovw::vimage {

namespace {

/// Run left..right of row y, which may be empty, is dealt with; row y + dy is to be explored.
struct PendingRun {
    int y;
    int left;
    int right;
    int dy;
};

/// The runs that wait, the last one first.
class PendingRuns {
public:
    bool isEmpty() const { return m_count == 0; }
    void push(const PendingRun& run) {
        if (m_count == m_room)
            return growAndPush(run);
        m_first[m_count++] = run;
    }
    PendingRun pop() { return m_first[--m_count]; }

private:
    [[gnu::noinline]] void growAndPush(const PendingRun& run) { // rare
        constexpr int cnGrowStep = 4096;
        m_runs.SetSize(m_room + cnGrowStep);
        m_room += cnGrowStep;
        m_first = m_runs.GetData();
        m_first[m_count++] = run;
    }

    XCTArray<PendingRun, 0> m_runs; // more than wait: its size only grows
    PendingRun* m_first = nullptr;
    int m_room = 0; // runs that m_runs takes
    int m_count = 0;
};

template <class Row>
class Flood {
public:
    Flood(Row& row, const XCVOffscreen& image, const XCRect& clip, int abortable)
        : m_row(row), m_width(image.GetWidth()), m_height(image.GetHeight()), m_left(std::max(clip.left, 0)),
          m_end(std::min(clip.right, m_width)), m_clip(clip), m_isAbortable(abortable == 1) {}

    FloodResult run(const XCPoint& seed) {
        m_result.ran = true;
        m_result.changed.SetRect(seed.x, seed.y, seed.x, seed.y);
        push({seed.y, seed.x, seed.x, 1});
        push({seed.y + 1, seed.x, seed.x, -1});
        while (!m_pending.isEmpty())
            if (isCancelled() || !explore(m_pending.pop())) {
                m_result.wasCancelled = true;
                break;
            }
        ++m_result.changed.right;
        ++m_result.changed.bottom;
        return m_result;
    }

private:
    /// Only where the next row lies in the clip rectangle.
    void push(const PendingRun& run) {
        const int next = run.y + run.dy;
        if (next >= m_clip.top && next < m_clip.bottom)
            m_pending.push(run);
    }

    bool isCancelled() const {
        if (!m_isAbortable)
            return false;
        try {
            m_abort.CheckAbort();
        } catch (...) { // whatever stops the callback stops the fill
            return true;
        }
        return false;
    }

    void noteExplored(const PendingRun& from) {
        XCRect& changed = m_result.changed;
        if (m_y < changed.top)
            changed.top = m_y;
        else if (m_y > changed.bottom)
            changed.bottom = m_y;
        changed.left = std::min(changed.left, from.left);
        changed.right = std::max(changed.right, from.right);
    }

    /// False when the user cancels.
    bool explore(const PendingRun& from) {
        m_y = from.y + from.dy;
        noteExplored(from);
        if (m_y < 0 || m_y >= m_height)
            return true;
        m_row.load(from.left, m_y);
        int x = fillLeft(from.left);
        int left = x + 1;
        if (x < from.left) {
            if (left < from.left)
                push({m_y, left, from.left - 1, -from.dy}); // leaks back round the left end
            x = from.left + 1;
        } else {
            left = x = skip(from.left + 1, from.right);
            if (x > from.right)
                return true;
        }
        do {
            if (isCancelled())
                return false;
            x = fillRight(x);
            push({m_y, left, x - 1, from.dy});
            if (x > from.right + 1)
                push({m_y, from.right + 1, x - 1, -from.dy});
            left = x = skip(x + 1, from.right);
        } while (x <= from.right);
        return true;
    }

    /// Every column that the scans reach is entered, which creates its block, also where nothing is written then.
    void enter(int x) {
        if (!m_row.hasColumn(x) && x >= 0 && x < m_width)
            enterStretch(x);
    }
    [[gnu::noinline]] void enterStretch(int x) { m_row.load(x, m_y); } // rare

    void write(int begin, int end) {
        if (begin == end)
            return;
        m_row.write(begin, end);
        m_result.count += end - begin;
    }

    // Both give the first column that was not written.
    int fillLeft(int x) {
        while (x >= m_left) {
            enter(x);
            const int begin = std::max(m_row.lookLeft(x), m_left);
            const int first = m_row.insideBegin(x, begin);
            write(first, x + 1);
            x = first - 1;
            if (first > begin)
                break;
        }
        enter(x);
        return x;
    }
    int fillRight(int x) {
        while (x < m_end) {
            enter(x);
            const int end = std::min(m_row.lookRight(x), m_end);
            const int last = m_row.insideEnd(x, end);
            write(x, last);
            x = last;
            if (last < end)
                break;
        }
        enter(x);
        return x;
    }

    /// The first column from x that belongs to the region, or right + 1; x when that lies beyond.
    int skip(int x, int right) {
        while (x <= right) {
            enter(x);
            const int end = std::min(m_row.right(), right + 1);
            x = m_row.nextMatch(x, end);
            if (x < end)
                break;
        }
        enter(x);
        return x;
    }

    Row& m_row;
    const int m_width;
    const int m_height;
    const int m_left; // the columns of clip and image
    const int m_end;
    const XCRect m_clip;
    const bool m_isAbortable;
    const XCAbort m_abort{1, 0};
    int m_y = 0;
    PendingRuns m_pending;
    FloodResult m_result;
};

XCRect clipOf(const FloodRequest& request) { return request.clip ? *request.clip : request.destination->GetRect(); }

template <int Bits>
std::uint32_t readCursor(XCVOffscreen& image, int x, int y) {
    image.MoveCursor(x, y);
    return Bits == 1    ? image.Get1BitColor()
           : Bits == 2  ? image.Get2BitColor()
           : Bits == 8  ? image.Get8BitColor()
           : Bits == 16 ? image.Get16BitColor()
           : Bits == 24 ? image.Get24BitColor()
                        : image.Get32BitColor();
}

template <int Bits>
constexpr std::uint32_t fillValue(std::uint32_t colour) {
    return Bits == 1              ? inkBit(colour)
           : Bits == 2            ? Bit2::rowValue(colour, PixelRules())
           : Bits == 8            ? inkOf(colour)
           : Bits == 24 || colour ? colour
                                  : cnWhite;
}

/// A fill by values of the depth of a pixel format.
template <class Values>
class FloodTask {
    static constexpr int Bits = Values::cnBits;
    static constexpr bool cnHasAlpha = Bits == 16 || Bits == 32;

public:
    explicit FloodTask(const FloodRequest& request)
        : m_request(request), m_image(*request.destination),
          m_sourceSeed(truncateToInt(double(request.seed.x) - request.offset.x),
                       truncateToInt(double(request.seed.y) - request.offset.y)),
          m_written(fillValue<Bits>(request.colour)) {
        m_match.zeroIsWhite = cnHasAlpha;
        m_filled = m_match.seen(readBack());
    }

    FloodResult run() {
        const XCPoint seed = m_request.seed;
        if (m_match.seen(readCursor<Bits>(m_image, seed.x, seed.y)) == m_filled)
            return {};
        m_match.margin = m_request.margin.value_or(0);
        m_match.transparentIsOne = cnHasAlpha && m_request.margin.has_value();
        m_match.compared = Bits == 24 ? cnRgbMask : ~std::uint32_t{0};
        m_match.reference = readSeed<Bits>(*m_request.source);
        if (cnHasAlpha && alphaOf(m_match.reference) == 0)
            m_match.reference = cnWhite;
        const bool judgesItself = m_request.source == &m_image && m_request.offset == XCPoint() && !m_request.second;
        return judgesItself && m_image.GetDepth() == Bits ? runOwn() : runPair();
    }

private:
    template <int ReadBits>
    std::uint32_t readSeed(XCVOffscreen& image) const {
        const XCVOffscreenEditLock noNewBlocks(&image);
        return readCursor<ReadBits>(image, m_sourceSeed.x, m_sourceSeed.y);
    }

    /// Of a pixel that was filled.
    std::uint32_t readBack() const {
        return withFormat(m_image.GetDepth(), [&]<class Format>() {
            const PixelRules& rules = m_image.GetPixelRules();
            return readAs<Bits, Format>(writtenValue<Bits, Format>(m_written, rules), rules);
        });
    }

    FloodResult runOwn() const {
        // Whether the reference stands for one stored value only; on 2 bits a stored 1 reads 0 as well.
        const bool isOneValue = m_match.margin == 0 && !m_match.transparentIsOne &&
                                !(cnHasAlpha && m_match.reference == cnWhite) &&
                                !(Bits == 2 && m_match.reference == cnTransparent2);
        return isOneValue ? runOwn<true>() : runOwn<false>();
    }
    template <bool IsExact>
    FloodResult runOwn() const {
        FloodOwnRow<Values, IsExact> row(m_image, m_match, m_written, m_filled);
        return run(row);
    }

    FloodResult runPair() const {
        FloodPairRow row(m_image, Bits, m_written, m_filled, cnHasAlpha);
        row.addJudge(*m_request.source, Bits, m_request.offset, m_match);
        if (m_request.second) {
            constexpr int cnSecondBits = Bits == 24 ? 8 : Bits;
            const FloodMatch match{readSeed<cnSecondBits>(*m_request.second), m_match.margin};
            row.addJudge(*m_request.second, cnSecondBits, m_request.offset, match);
        }
        return run(row);
    }

    template <class Row>
    FloodResult run(Row& row) const {
        // The rows hold the blocks; what a cursor holds as well could only stand in the way of an eviction.
        for (XCVOffscreen* const image : {m_request.source, m_request.second, m_request.destination})
            if (image)
                image->MoveCursor(-1, -1);
        return Flood(row, m_image, clipOf(m_request), m_request.abortable).run(m_request.seed);
    }

    const FloodRequest& m_request;
    XCVOffscreen& m_image;
    const XCPoint m_sourceSeed;
    const std::uint32_t m_written;
    std::uint32_t m_filled = 0; // what written pixels read
    FloodMatch m_match;
};

} // namespace

FloodResult floodFill(int bits, const FloodRequest& request) {
    if (!request.destination || !request.source)
        return {};
    if (!request.destination->GetRect().PtInRect(request.seed) || !clipOf(request).PtInRect(request.seed))
        return {};
    // The destination last: where it is also a source, its cursor is to stand on the seed, in edit mode.
    const XCVOffscreenAutoLock sourceLock(request.source, 0);
    const XCVOffscreenAutoLock secondLock(request.second, 0);
    const XCVOffscreenAutoLock lock(request.destination, request.seed.x, request.seed.y, 1);
    return withFormat(bits, [&]<class Values>() { return FloodTask<Values>(request).run(); });
}

} // namespace ovw::vimage
