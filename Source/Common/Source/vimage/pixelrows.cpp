#include "vimage/pixelrows.h"

#include "vimage/mergebehind.h"
#include "vimage/withformat.h"

#include <cstring>

namespace ovw::vimage {

namespace {

template <class Format, auto Reading>
void readBytes(const std::uint8_t* row, int x, int count, const PixelRules& rules, std::uint8_t* values) {
    for (int i = 0; i < count; ++i)
        values[i] = Reading(Format::pixelAt(row, x + i), rules);
}

/// Eight bits at a time.
template <>
void readBytes<Bit1, Bit1::read1>(const std::uint8_t* row, int x, int count, const PixelRules&, std::uint8_t* values) {
    constexpr std::uint64_t cnEachByte = 0x0101010101010101, cnEachBit = 0x0102040810204080;
    int i = 0;
    for (; i < count && (x + i) % 8 != 0; ++i)
        values[i] = Bit1::pixelAt(row, x + i);
    for (; i + 8 <= count; i += 8) {
        const std::uint64_t bits = row[(x + i) >> 3] * cnEachByte & cnEachBit;
        const std::uint64_t bytes = (bits + 0x7F * cnEachByte) >> 7 & cnEachByte;
        std::memcpy(values + i, &bytes, sizeof bytes);
    }
    for (; i < count; ++i)
        values[i] = Bit1::pixelAt(row, x + i);
}

template <class Format, auto Reading>
void readColours(const std::uint8_t* row, int x, int count, const PixelRules& rules, BgraPixel* colours) {
    for (int i = 0; i < count; ++i)
        colours[i] = Rgba32::ofColour(Reading(Format::pixelAt(row, x + i), rules));
}

void copyColours(const std::uint8_t* row, int x, int count, const PixelRules&, BgraPixel* colours) {
    std::memcpy(colours, row + x * sizeof(BgraPixel), static_cast<std::size_t>(count) * sizeof(BgraPixel));
}

std::uint32_t solid2(std::uint8_t v, const PixelRules& rules) {
    const std::uint32_t colour = Bit2::read32(v, rules);
    return v >= cnWhite2 ? colour | cnOpaqueAlpha : colour;
}

// Averages: what is summed up stands in the channels, an alpha of 0 keeps a pixel out.
std::uint32_t weighed1(std::uint8_t v, const PixelRules&) { return packColour(v, 0, 0, 0); }
std::uint32_t weighed2(std::uint8_t v, const PixelRules&) { return packColour(v >= cnWhite2, v == cnBlack2, 0, 0); }

template <class Format>
void writeColours(std::uint8_t* row, int x, int count, const PixelRules& rules, const BgraPixel* colours,
                  const std::uint8_t* isWanted) {
    for (int i = 0; i < count; ++i)
        if (!isWanted || isWanted[i])
            Format::setPixel(row, x + i, Format::write32(Rgba32::colourOf(colours[i]), rules));
}

/// Without a branch a pixel.
template <>
void writeColours<Rgba32>(std::uint8_t* row, int x, int count, const PixelRules&, const BgraPixel* colours,
                          const std::uint8_t* isWanted) {
    if (!isWanted)
        return Rgba32::copyRow(row, x, reinterpret_cast<const std::uint8_t*>(colours), 0, count);
    std::uint8_t* const pixels = row + static_cast<std::ptrdiff_t>(x) * Rgba32::cnBytes;
    for (int i = 0; i < count; ++i) {
        std::uint32_t there, wanted;
        std::memcpy(&there, pixels + i * Rgba32::cnBytes, sizeof there);
        std::memcpy(&wanted, colours + i, sizeof wanted);
        there = isWanted[i] ? wanted : there;
        std::memcpy(pixels + i * Rgba32::cnBytes, &there, sizeof there);
    }
}

template <class Format>
void writeColoursBehind(std::uint8_t* row, int x, int count, const PixelRules& rules, const BgraPixel* colours,
                        const std::uint8_t* isWanted) {
    for (int i = 0; i < count; ++i) {
        const BgraPixel front = Rgba32::ofColour(Format::read32(Format::pixelAt(row, x + i), rules));
        if ((!isWanted || isWanted[i]) && showsBehind(colours[i], front))
            Format::setPixel(row, x + i, Format::write32(Rgba32::colourOf(mergedBehind(colours[i], front)), rules));
    }
}

template <class Format>
void writeBytes(std::uint8_t* row, int x, int count, const PixelRules& rules, const std::uint8_t* values) {
    for (int i = 0; i < count; ++i)
        Format::setPixel(row, x + i, Format::writeOwn(values[i], rules));
}

template <class Format>
void writeNonZeroBytes(std::uint8_t* row, int x, int count, const PixelRules& rules, const std::uint8_t* values) {
    for (int i = 0; i < count; ++i)
        if (values[i])
            Format::setPixel(row, x + i, Format::writeOwn(values[i], rules));
}

void uniteDensities(std::uint8_t* row, int x, int count, const PixelRules&, const std::uint8_t* values) {
    for (int i = 0; i < count; ++i)
        row[x + i] = unitedDensity(row[x + i], values[i]);
}

template <class Format>
constexpr PixelRows rowsOf() {
    PixelRows rows{};
    rows.read1 = readBytes<Format, Format::read1>;
    rows.read2 = readBytes<Format, Format::read2>;
    rows.read8 = readBytes<Format, Format::read8>;
    rows.read24 = readColours<Format, Format::read24>;
    rows.read32 = rows.readSolid = rows.readWeighed = readColours<Format, Format::read32>;
    rows.write32 = writeColours<Format>;
    rows.writeBehind = writeColoursBehind<Format>;
    if constexpr (Format::cnBits <= Density8::cnBits) {
        rows.write = writeBytes<Format>;
        rows.writeNonZero = rows.unite = writeNonZeroBytes<Format>;
    }
    return rows;
}

template <class Format>
constexpr PixelRows cnRows = rowsOf<Format>();

template <>
constexpr PixelRows cnRows<Bit1> = [] {
    PixelRows rows = rowsOf<Bit1>();
    rows.readWeighed = readColours<Bit1, weighed1>;
    return rows;
}();

template <>
constexpr PixelRows cnRows<Bit2> = [] {
    PixelRows rows = rowsOf<Bit2>();
    rows.readSolid = readColours<Bit2, solid2>;
    rows.readWeighed = readColours<Bit2, weighed2>;
    return rows;
}();

template <>
constexpr PixelRows cnRows<Density8> = [] {
    PixelRows rows = rowsOf<Density8>();
    rows.readWeighed = readColours<Density8, Density8::read16>;
    rows.unite = uniteDensities;
    return rows;
}();

template <>
constexpr PixelRows cnRows<Rgba32> = [] {
    PixelRows rows = rowsOf<Rgba32>();
    rows.read32 = rows.readSolid = rows.readWeighed = copyColours;
    return rows;
}();

} // namespace

const PixelRows& pixelRows(int depth) {
    const PixelRows* const rows = withFormat(depth, []<class Format>() { return &cnRows<Format>; });
    static constexpr PixelRows cnNone{};
    return rows ? *rows : cnNone;
}

} // namespace ovw::vimage
