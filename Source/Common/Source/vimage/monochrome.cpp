#include "ovwcmn/xcvoffscreen.h"
#include "vimage/convertrows.h"
#include "vimage/greyscale.h"
#include "vimage/rowkernels.h"
#include "vimage/withformat.h"

#include <algorithm>

namespace ovw::vimage {

namespace {

/// The smallest value that the 4 x 4 dither turns on at each place: every level keeps what the one below has on. The
/// patterns are read with x as the row.
class DitherThresholds {
public:
    explicit DitherThresholds(bool keepsSolid) {
        for (int y = 0; y < cnSide; ++y)
            for (int x = 0; x < cnBlockSize; ++x) {
                const int value = firstValue(x, y);
                m_rows[y][x] = byteOf(keepsSolid ? std::clamp(value, cnFirstShade, cnFirstSolid) : value);
            }
    }

    /// For the columns of a block.
    const std::uint8_t* row(int y) const { return m_rows[y & (cnSide - 1)]; }

private:
    static constexpr int cnSide = 4;
    static constexpr int cnLevels = 16;
    static constexpr int cnFirstShade = 15;  // below it nothing is on
    static constexpr int cnFirstSolid = 208; // from it everything is

    /// Of the values v that reach the level, v / 16 to the nearest, which has the place on.
    static int firstValue(int x, int y) {
        int level = 1;
        while (level < cnLevels && !XCVOffscreen::GetDitherValue16(level, y, x))
            ++level;
        return level * cnLevels - cnLevels / 2;
    }

    std::uint8_t m_rows[cnSide][cnBlockSize];
};

struct MonoRow {
    int y; ///< in the source
    bool keepsSolid;
    FourTones tones;
};

/// The tones, as 2-bit values, of count pixels from x of a row.
template <class Format>
void readTones(const std::uint8_t* row, int x, int count, const PixelRules& rules, const MonoRow& how,
               std::uint8_t* tones) {
    if constexpr (Format::cnBits < Density8::cnBits)
        for (int i = 0; i < count; ++i)
            tones[i] = how.tones.of[Format::read2(Format::pixelAt(row, x + i), rules)];
    else {
        std::uint8_t coverages[cnBlockSize];
        std::uint8_t darknesses[cnBlockSize];
        if constexpr (Format::cnBits == Rgba32::cnBits) {
            rowKernels().luminances32(row + x * Format::cnBytes, count, cnByteMax, darknesses);
            rowKernels().alphas32(row + x * Format::cnBytes, count, coverages);
        } else {
            for (int i = 0; i < count; ++i) {
                const std::uint32_t colour = Format::read16(Format::pixelAt(row, x + i), rules);
                coverages[i] = byteOf(alphaOf(colour));
                darknesses[i] = byteOf(cnByteMax - redOf(colour));
            }
        }
        static const DitherThresholds s_all(false);
        static const DitherThresholds s_shades(true);
        const std::uint8_t* const thresholds = (how.keepsSolid ? s_shades : s_all).row(how.y);
        rowKernels().tones(coverages, darknesses, thresholds + x, count, how.keepsSolid, how.tones, tones);
    }
}

template <class Format>
void writeTones(std::uint8_t* row, int x, int count, const PixelRules& rules, const std::uint8_t* tones) {
    int i = 0;
    if constexpr (Format::cnBits == Bit1::cnBits) {
        for (; i < count && ((x + i) & 7) != 0; ++i)
            Format::setPixel(row, x + i, Format::write2(tones[i], rules));
        if (const int bytes = (count - i) / 8; bytes > 0) {
            rowKernels().packInk(tones + i, bytes, row + (x + i) / 8);
            i += 8 * bytes;
        }
    }
    for (; i < count; ++i)
        Format::setPixel(row, x + i, Format::write2(tones[i], rules));
}

/// The 2-bit values that are stored for each value read, by the depths of the images.
FourTones storedTones(int source, int destination, bool reverse) {
    const bool dropsWhite =
        destination != Bit2::cnBits && (source == Bit2::cnBits || destination == Bit1::cnBits ||
                                        destination == Density8::cnBits || destination == Rgb24::cnBits);
    FourTones tones{};
    for (std::uint8_t v = 0; v <= cnBlack2; ++v) {
        const std::uint8_t kept = dropsWhite && v != cnBlack2 ? cnTransparent2 : v;
        const bool isLight = kept == cnTransparent2 || kept == cnWhite2;
        tones.of[v] = !reverse ? kept : isLight ? cnBlack2 : cnTransparent2;
    }
    return tones;
}

} // namespace

void convertToMono(XCVOffscreen& destination, XCVOffscreen& source, const XCRect& rect, std::int64_t dx,
                   std::int64_t dy, bool keepsSolid, bool reverse) {
    const auto read = withFormat(source.GetDepth(), []<class Format>() { return &readTones<Format>; });
    const auto write = withFormat(destination.GetDepth(), []<class Format>() { return &writeTones<Format>; });
    const FourTones tones = storedTones(source.GetDepth(), destination.GetDepth(), reverse);
    convertRows(destination, source, rect, dx, dy, [&](const RowPair& rows) {
        std::uint8_t values[cnBlockSize];
        read(rows.from, rows.fromX, rows.count, source.GetPixelRules(), {rows.y, keepsSolid, tones}, values);
        write(rows.to, rows.toX, rows.count, destination.GetPixelRules(), values);
    });
}

} // namespace ovw::vimage
