#ifndef OVW_TESTS_VIMAGE_FLOODREFERENCE_H
#define OVW_TESTS_VIMAGE_FLOODREFERENCE_H

#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"

#include <cstdint>
#include <optional>
#include <vector>

/// @file
/// The flood fill as its rules have it, a cursor step a pixel.

namespace ovw::test {

struct FloodCase {
    int bits; ///< of the values that are read and written
    XCVOffscreen* dest;
    XCVOffscreen* source;
    XCVOffscreen* second; ///< looked at by fills from 1 and 24 bits
    XCPoint seed;
    std::uint32_t colour;
    XCPoint offset;
    XCRect clip;
    std::optional<int> margin; ///< none: the fill without a margin
};

struct FloodOutcome {
    int result = 0;
    XCRect changed{-7, -7, -7, -7};
    int count = -7;
};

class FloodReference {
public:
    explicit FloodReference(const FloodCase& c) : m_case(c) {}

    FloodOutcome run() {
        const XCPoint seed = m_case.seed;
        FloodOutcome out;
        if (!isInside(seed.x, seed.y) || !m_case.clip.PtInRect(seed))
            return out;
        const XCVOffscreenAutoLock sourceLock(m_case.source, 0), secondLock(m_case.second, 0);
        const XCVOffscreenAutoLock lock(m_case.dest, seed.x, seed.y, 1);
        m_value = fillValue();
        if (destination(seed.x, seed.y) == readBack())
            return out;
        m_readBack = readBack();
        m_reference = sourceAt(m_case.source, m_case.bits, seed.x, seed.y);
        if (hasAlpha() && m_reference <= 0x00FFFFFF)
            m_reference = 0x00FFFFFF;
        if (m_case.second)
            m_reference2 = sourceAt(m_case.second, secondBits(), seed.x, seed.y);
        fill(out);
        return out;
    }

private:
    struct Run {
        int y, l, r, dy;
    };

    bool hasAlpha() const { return m_case.bits == 16 || m_case.bits == 32; }
    int secondBits() const { return m_case.bits == 1 ? 1 : 8; }
    bool isInside(int x, int y) const {
        return x >= 0 && y >= 0 && x < m_case.dest->GetWidth() && y < m_case.dest->GetHeight();
    }
    static std::uint32_t read(XCVOffscreen* image, int bits) {
        switch (bits) {
        case 1: return image->Get1BitColor();
        case 2: return image->Get2BitColor();
        case 8: return image->Get8BitColor();
        case 16: return image->Get16BitColor();
        case 24: return image->Get24BitColor();
        default: return image->Get32BitColor();
        }
    }
    static void write(XCVOffscreen* image, int bits, std::uint32_t v) {
        switch (bits) {
        case 1: return image->Set1BitColor(std::uint8_t(v));
        case 2: return image->Set2BitColor(std::uint8_t(v));
        case 8: return image->Set8BitColor(std::uint8_t(v));
        case 16:
        case 32: return image->Set32BitColor(v);
        default: return image->Set24BitColor(v);
        }
    }
    std::uint32_t normal(std::uint32_t v) const { return hasAlpha() && v == 0 ? 0x00FFFFFF : v; }

    std::uint32_t fillValue() const {
        const std::uint32_t c = m_case.colour, a = c >> 24;
        const int dark = 255 - int((c & 0xFF) + 4 * (c >> 8 & 0xFF) + 2 * (c >> 16 & 0xFF)) / 7;
        switch (m_case.bits) {
        case 1: return (c & 0x80808080) != 0;
        case 2: return a <= 127 ? 0 : (c & 0x808080) ? 2 : 3;
        case 8: return std::uint32_t(dark) * (a + 1) >> 8;
        case 24: return c;
        default: return c ? c : 0x00FFFFFF;
        }
    }
    /// What the destination gives for a pixel that was written; the pixel under its cursor comes back.
    std::uint32_t readBack() const {
        XCVOffscreen* const image = m_case.dest;
        const std::uint32_t kept = image->GetColor();
        write(image, m_case.bits, m_value);
        const std::uint32_t v = normal(read(image, m_case.bits));
        image->SetColor(kept);
        return v;
    }
    std::uint32_t destination(int x, int y) const {
        m_case.dest->MoveCursor(x, y); // in edit mode: the block comes into being
        return normal(read(m_case.dest, m_case.bits));
    }
    std::uint32_t sourceAt(XCVOffscreen* image, int bits, int x, int y) const {
        const XCVOffscreenEditLock unedited(image);
        image->MoveCursor(x - m_case.offset.x, y - m_case.offset.y);
        const std::uint32_t v = read(image, bits);
        return image == m_case.second && image != m_case.source ? v : normal(v);
    }
    bool isNear(std::uint32_t s, std::uint32_t ref, int margin) const {
        switch (m_case.bits) {
        case 8: return int(s) - margin <= int(ref) && int(ref) <= int(s) + margin;
        case 24: return XCVOffscreen::IsEqualRGB(ref, s, margin);
        default: return XCVOffscreen::IsEqualRGBA(ref, s, margin);
        }
    }
    bool matches(int x, int y) const {
        const std::uint32_t s = sourceAt(m_case.source, m_case.bits, x, y);
        if (!(m_case.margin ? isNear(s, m_reference, *m_case.margin) : s == m_reference))
            return false;
        if (!m_case.second)
            return true;
        const int s2 = int(sourceAt(m_case.second, secondBits(), x, y)), ref2 = int(m_reference2);
        const int margin = m_case.margin.value_or(0);
        return s2 - margin <= ref2 && ref2 <= s2 + margin;
    }
    bool isFillable(int x, int y) const { return isInside(x, y) && destination(x, y) != m_readBack && matches(x, y); }
    void paint(int x, int y, FloodOutcome& out) const {
        m_case.dest->MoveCursor(x, y);
        write(m_case.dest, m_case.bits, m_value);
        ++out.count;
    }
    void push(const Run& run) {
        if (run.y + run.dy >= m_case.clip.top && run.y + run.dy <= m_case.clip.bottom - 1)
            m_stack.push_back(run);
    }

    void fill(FloodOutcome& out) {
        const XCPoint seed = m_case.seed;
        out = {1, XCRect(seed.x, seed.y, seed.x, seed.y), 0};
        push({seed.y, seed.x, seed.x, 1});
        push({seed.y + 1, seed.x, seed.x, -1});
        while (!m_stack.empty()) {
            const Run run = m_stack.back();
            m_stack.pop_back();
            explore(run, out);
        }
        ++out.changed.right, ++out.changed.bottom;
    }

    void explore(const Run& run, FloodOutcome& out) {
        const int y = run.y + run.dy, xmin = m_case.clip.left, xmax = m_case.clip.right - 1;
        if (y < out.changed.top)
            out.changed.top = y;
        else if (y > out.changed.bottom)
            out.changed.bottom = y;
        if (run.l < out.changed.left)
            out.changed.left = run.l;
        if (run.r > out.changed.right)
            out.changed.right = run.r;
        if (!isInside(run.l, y))
            return;
        destination(run.l, y);
        int x = run.l, l = run.l;
        for (; x >= xmin && isFillable(x, y); destination(--x, y))
            paint(x, y, out);
        bool skips = x >= run.l;
        if (!skips) {
            l = x + 1;
            if (l < run.l)
                push({y, l, run.l - 1, -run.dy});
            x = run.l + 1;
            destination(x, y);
        }
        do {
            if (!skips) {
                for (; x <= xmax && isFillable(x, y); destination(++x, y))
                    paint(x, y, out);
                push({y, l, x - 1, run.dy});
                if (x > run.r + 1)
                    push({y, run.r + 1, x - 1, -run.dy});
            }
            skips = false;
            for (destination(++x, y); x <= run.r && !matches(x, y);)
                destination(++x, y);
            l = x;
        } while (x <= run.r);
    }

    const FloodCase m_case;
    std::uint32_t m_value = 0, m_readBack = 0, m_reference = 0, m_reference2 = 0;
    std::vector<Run> m_stack;
};

} // namespace ovw::test

#endif // OVW_TESTS_VIMAGE_FLOODREFERENCE_H
