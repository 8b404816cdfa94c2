#ifndef OVW_VIMAGE_PIXELLAYOUT_H
#define OVW_VIMAGE_PIXELLAYOUT_H

/// @file
/// How pixels lie in a row of block memory: several in a byte, or one in some bytes. Rows are addressed by their first
/// byte; x counts pixels from there.

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ovw::vimage {

/// Bytes after which every pixel of 1 to 4 bytes begins anew, in whole lines of the cache.
inline constexpr std::size_t cnPatternBytes = 192;
inline constexpr std::size_t cnCacheLine = 64;
/// Shorter runs than this are filled as fast in a simpler way.
inline constexpr std::size_t cnLongFill = 4 * cnPatternBytes;

/// Repeats the first cnPatternBytes of a pattern, which goes on for a cache line behind them.
void fillRepeated(std::uint8_t* to, std::size_t bytes, const std::uint8_t* pattern);
/// Moves bits to where they stand `shift` (1 to 7) places nearer to the start of their byte; reads a byte more than it
/// writes. The rows do not overlap.
void shiftBits(std::uint8_t* to, const std::uint8_t* from, std::size_t bytes, int shift);

/// The bytes that a run of sub-byte pixels covers, and the bits of its first and last byte.
struct ByteRun {
    std::size_t first;
    std::size_t last;
    std::uint8_t firstMask;
    std::uint8_t lastMask;

    /// count is above 0.
    static constexpr ByteRun ofPixels(int bits, int x, int count) {
        const auto begin = static_cast<std::size_t>(x) * bits;
        const auto end = begin + static_cast<std::size_t>(count) * bits - 1;
        ByteRun run{begin >> 3, end >> 3, static_cast<std::uint8_t>(0xFF >> (begin & 7)),
                    static_cast<std::uint8_t>(0xFF << (7 - (end & 7)))};
        if (run.first == run.last)
            run.firstMask = run.lastMask = run.firstMask & run.lastMask;
        return run;
    }
};

/// Pixels of 1 or 2 bits, the first in the highest bits. A pixel is a byte's address and its mask in that byte.
template <int Bits>
struct PackedLayout {
    using Value = std::uint8_t;
    static constexpr int cnBits = Bits;
    static constexpr std::uint8_t cnLastMask = (1 << Bits) - 1;
    static constexpr std::uint8_t cnFirstMask = cnLastMask << (8 - Bits);
    static constexpr std::uint8_t cnUnit = 0xFF / cnLastMask; // value x unit = four or eight equal pixels

    static Value load(const std::uint8_t* address, std::uint8_t mask) {
        return static_cast<Value>((*address & mask) >> std::countr_zero(mask));
    }
    static void store(std::uint8_t* address, std::uint8_t mask, Value value) {
        *address = static_cast<std::uint8_t>((*address & ~mask) | (value * cnUnit & mask));
    }
    static void stepForward(std::uint8_t*& address, std::uint8_t& mask) {
        mask = static_cast<std::uint8_t>(mask >> Bits);
        if (!mask)
            mask = cnFirstMask, ++address;
    }
    static void stepBack(std::uint8_t*& address, std::uint8_t& mask) {
        mask = static_cast<std::uint8_t>(mask << Bits);
        if (!mask)
            mask = cnLastMask, --address;
    }
    static void fillRow(std::uint8_t* row, int x, int count, Value value) {
        fillPattern(row, x, count, static_cast<std::uint8_t>(value * cnUnit));
    }
    static void fillPattern(std::uint8_t* row, int x, int count, std::uint8_t pattern) {
        if (count > 0)
            keepingEnds(row, ByteRun::ofPixels(Bits, x, count),
                        [=](std::uint8_t* to, std::size_t bytes) { std::memset(to, pattern, bytes); });
    }
    static Value pixelAt(const std::uint8_t* row, int x) {
        return load(row + (x * Bits >> 3), static_cast<std::uint8_t>(cnFirstMask >> (x * Bits & 7)));
    }
    static void setPixel(std::uint8_t* row, int x, Value value) {
        store(row + (x * Bits >> 3), static_cast<std::uint8_t>(cnFirstMask >> (x * Bits & 7)), value);
    }
    /// Pixels as they stand. The rows do not overlap.
    static void copyRow(std::uint8_t* to, int toX, const std::uint8_t* from, int fromX, int count) {
        if (count <= 0)
            return;
        if (((toX ^ fromX) * Bits & 7) != 0)
            return shiftRow(to, toX * Bits, from, fromX * Bits, count * Bits);
        const std::uint8_t* const source = from + (fromX * Bits >> 3);
        keepingEnds(to, ByteRun::ofPixels(Bits, toX, count),
                    [source](std::uint8_t* first, std::size_t bytes) { std::memcpy(first, source, bytes); });
    }
    template <class Visit>
    static void visitRow(std::uint8_t* row, int x, int count, Visit visit) {
        std::uint8_t* address = row + (x * Bits >> 3);
        auto mask = static_cast<std::uint8_t>(cnFirstMask >> (x * Bits & 7));
        for (int i = 0; i < count; ++i, stepForward(address, mask))
            visit(load(address, mask));
    }
    /// Replaces each pixel of the run by change(pixel).
    template <class Change>
    static void changeRow(std::uint8_t* row, int x, int count, Change change) {
        std::uint8_t* address = row + (x * Bits >> 3);
        auto mask = static_cast<std::uint8_t>(cnFirstMask >> (x * Bits & 7));
        for (int i = 0; i < count; ++i, stepForward(address, mask))
            store(address, mask, change(load(address, mask)));
    }
    /// Whether no pixel of the run has a bit of `bits`, a pattern for whole bytes.
    static bool isRowClear(const std::uint8_t* row, int x, int count, std::uint8_t bits) {
        if (count <= 0)
            return true;
        const ByteRun run = ByteRun::ofPixels(Bits, x, count);
        unsigned found = (row[run.first] & run.firstMask) | (row[run.last] & run.lastMask);
        for (std::size_t i = run.first + 1; i < run.last; ++i)
            found |= row[i];
        return (found & bits) == 0;
    }

protected:
    /// Writes all bytes of a run by write(first, number), and puts back the bits of the outer ones that are not in it:
    /// the bytes are one piece of memory, which mostly begins on a whole word.
    template <class Write>
    static void keepingEnds(std::uint8_t* row, const ByteRun& run, Write write) {
        const std::uint8_t first = row[run.first], last = row[run.last];
        write(row + run.first, run.last - run.first + 1);
        putBits(row[run.first], static_cast<std::uint8_t>(~run.firstMask), first);
        putBits(row[run.last], static_cast<std::uint8_t>(~run.lastMask), last);
    }

private:
    /// Bits to a place that differs within the byte, a byte of the destination at a time.
    static void shiftRow(std::uint8_t* to, int toBit, const std::uint8_t* from, int fromBit, int bits) {
        while (bits > 0) {
            const int place = toBit & 7;
            if (place == 0 && bits >= 2 * 8) {
                const int whole = bits & ~7;
                shiftBits(to + (toBit >> 3), from + (fromBit >> 3), static_cast<std::size_t>(whole >> 3), fromBit & 7);
                toBit += whole, fromBit += whole, bits -= whole;
                continue;
            }
            const int taken = std::min(8 - place, bits);
            const int start = fromBit & 7;
            const std::uint8_t* const source = from + (fromBit >> 3);
            int value = source[0] << start;
            if (start + taken > 8)
                value |= source[1] >> (8 - start);
            const int mask = (0xFF << (8 - taken) & 0xFF) >> place;
            putBits(to[toBit >> 3], static_cast<std::uint8_t>(mask),
                    static_cast<std::uint8_t>((value & 0xFF) >> place));
            toBit += taken, fromBit += taken, bits -= taken;
        }
    }
    static void putBits(std::uint8_t& byte, std::uint8_t mask, std::uint8_t pattern) {
        byte = static_cast<std::uint8_t>((byte & ~mask) | (pattern & mask));
    }
};

/// Pixels of whole bytes; Pixel is a plain struct of bytes (or a byte). Masks play no part.
template <class Pixel>
struct ByteLayout {
    using Value = Pixel;
    static constexpr int cnBytes = sizeof(Pixel);
    static constexpr int cnBits = 8 * cnBytes;
    static constexpr std::uint8_t cnFirstMask = 0;

    static Value load(const std::uint8_t* address, std::uint8_t = 0) {
        Value value;
        std::memcpy(&value, address, sizeof value);
        return value;
    }
    static void store(std::uint8_t* address, std::uint8_t, Value value) { std::memcpy(address, &value, sizeof value); }
    static void stepForward(std::uint8_t*& address, std::uint8_t&) { address += cnBytes; }
    static void stepBack(std::uint8_t*& address, std::uint8_t&) { address -= cnBytes; }

    static void fillRow(std::uint8_t* row, int x, int count, Value value) {
        if (count <= 0)
            return;
        std::uint8_t* const begin = row + static_cast<std::size_t>(x) * cnBytes;
        const std::size_t bytes = static_cast<std::size_t>(count) * cnBytes;
        if (const int byte = repeatedByte(value); byte >= 0) {
            std::memset(begin, byte, bytes);
            return;
        }
        if (bytes < cnLongFill)
            return repeatFirst(begin, bytes, value);
        std::uint8_t pattern[cnPatternBytes + cnCacheLine];
        repeatFirst(pattern, sizeof pattern, value);
        fillRepeated(begin, bytes, pattern);
    }
    static Value pixelAt(const std::uint8_t* row, int x) {
        return load(row + static_cast<std::ptrdiff_t>(x) * cnBytes);
    }
    static void setPixel(std::uint8_t* row, int x, Value value) {
        store(row + static_cast<std::ptrdiff_t>(x) * cnBytes, 0, value);
    }
    /// Pixels as they stand. The rows do not overlap.
    static void copyRow(std::uint8_t* to, int toX, const std::uint8_t* from, int fromX, int count) {
        if (count > 0)
            std::memcpy(to + static_cast<std::ptrdiff_t>(toX) * cnBytes,
                        from + static_cast<std::ptrdiff_t>(fromX) * cnBytes, static_cast<std::size_t>(count) * cnBytes);
    }
    template <class Visit>
    static void visitRow(const std::uint8_t* row, int x, int count, Visit visit) {
        const std::uint8_t* address = row + static_cast<std::ptrdiff_t>(x) * cnBytes;
        for (int i = 0; i < count; ++i, address += cnBytes)
            visit(load(address));
    }
    template <class Change>
    static void changeRow(std::uint8_t* row, int x, int count, Change change) {
        std::uint8_t* address = row + static_cast<std::ptrdiff_t>(x) * cnBytes;
        for (int i = 0; i < count; ++i, address += cnBytes)
            store(address, 0, change(load(address)));
    }
    /// Whether no pixel of the run has a bit of `bits`, a pixel's bytes as a pattern repeated over eight bytes.
    static bool isRowClear(const std::uint8_t* row, int x, int count, std::uint64_t bits) {
        const std::uint8_t* address = row + static_cast<std::ptrdiff_t>(x) * cnBytes;
        std::ptrdiff_t bytes = static_cast<std::ptrdiff_t>(count) * cnBytes;
        std::uint64_t found = 0;
        for (; bytes > 0; bytes -= 8, address += 8) {
            std::uint64_t word = 0;
            std::memcpy(&word, address, bytes < 8 ? static_cast<std::size_t>(bytes) : 8);
            found |= word;
        }
        return (found & bits) == 0;
    }

private:
    /// Stores a value some times, then copies what is filled behind itself; the last copy may be cut.
    static void repeatFirst(std::uint8_t* begin, std::size_t bytes, const Value& value) {
        constexpr std::size_t cnSingly = 16 * cnBytes;
        std::size_t done = 0;
        for (; done + cnBytes <= bytes && done < cnSingly; done += cnBytes)
            store(begin + done, 0, value);
        if (done < cnSingly) { // a part of a value is left, or nothing
            std::memcpy(begin + done, &value, bytes - done);
            return;
        }
        for (std::size_t piece; done < bytes; done += piece) {
            piece = std::min(done, bytes - done);
            std::memcpy(begin + done, begin, piece);
        }
    }
    /// The one byte that the value consists of, or -1.
    static int repeatedByte(const Value& value) {
        std::uint8_t bytes[cnBytes];
        std::memcpy(bytes, &value, cnBytes);
        for (const std::uint8_t byte : bytes)
            if (byte != bytes[0])
                return -1;
        return bytes[0];
    }
};

} // namespace ovw::vimage

#endif // OVW_VIMAGE_PIXELLAYOUT_H
