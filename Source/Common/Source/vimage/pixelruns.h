#ifndef OVW_VIMAGE_PIXELRUNS_H
#define OVW_VIMAGE_PIXELRUNS_H

#include "vimage/pixelformats.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace ovw::vimage {

/// Looks for a pixel value in rows of block memory, some bytes at a time where those lie in the row. Columns count from
/// the block's left edge.
template <class Format>
class RunFinder {
public:
    using Value = typename Format::Value;

    explicit RunFinder(Value value) : m_value(value) {
        std::uint8_t bytes[cnPieceBytes];
        Format::fillRow(bytes, 0, cnPiecePixels, value);
        std::memcpy(m_words, bytes, sizeof bytes);
    }

    /// The first pixel of [x, end) that has another value; end without one.
    int endOfRun(const std::uint8_t* row, int x, int end) const {
        // Short runs go by branches: the processor guesses their ends, where it would have to wait for a word's.
        for (const int few = std::min(end, x + cnFew); x < few; ++x)
            if (!isEqual(row, x))
                return x;
        while (x < end)
            if (isByteStart(x) && x + cnPiecePixels <= cnBlockSize) {
                const int equal = equalFrom(row + byteOf(x));
                x += equal;
                if (equal < cnPiecePixels)
                    break;
            } else if (isEqual(row, x))
                ++x;
            else
                break;
        return std::min(x, end);
    }

    /// The first pixel of the run that ends with x, but not one before begin; x + 1 when x has another value.
    int beginOfRun(const std::uint8_t* row, int x, int begin) const {
        int first = x + 1;
        for (const int few = std::max(begin, first - cnFew); first > few; --first)
            if (!isEqual(row, first - 1))
                return first;
        while (first > begin)
            if (isByteStart(first) && first >= cnPiecePixels) {
                const int equal = equalBefore(row + byteOf(first));
                first -= equal;
                if (equal < cnPiecePixels)
                    break;
            } else if (isEqual(row, first - 1))
                --first;
            else
                break;
        return std::max(first, begin);
    }

    /// The first pixel of [x, end) that has the value; end without one.
    int next(const std::uint8_t* row, int x, int end) const {
        while (x < end && !isEqual(row, x))
            ++x;
        return x;
    }

private:
    static constexpr int cnFew = 4;
    static constexpr int cnWordBytes = 8;
    static constexpr int cnWords = Format::cnBits == Rgb24::cnBits ? 3 : 1; // that whole pixels fill
    static constexpr int cnPieceBytes = cnWords * cnWordBytes;
    static constexpr int cnPiecePixels = cnPieceBytes * 8 / Format::cnBits;

    static constexpr bool isByteStart(int x) { return x * Format::cnBits % 8 == 0; }
    static constexpr int byteOf(int x) { return x * Format::cnBits / 8; }

    bool isEqual(const std::uint8_t* row, int x) const {
        const Value v = Format::pixelAt(row, x);
        return std::memcmp(&v, &m_value, sizeof v) == 0;
    }

    std::uint64_t differenceAt(const std::uint8_t* piece, int word) const {
        std::uint64_t bytes = 0;
        std::memcpy(&bytes, piece + word * cnWordBytes, sizeof bytes);
        return bytes ^ m_words[word];
    }

    /// How many pixels at the piece's start have the value.
    int equalFrom(const std::uint8_t* piece) const {
        for (int word = 0; word < cnWords; ++word)
            if (const std::uint64_t difference = differenceAt(piece, word)) {
                const int byte = (isLittle ? std::countr_zero(difference) : std::countl_zero(difference)) / 8;
                return pixelsIn(word * cnWordBytes + byte) + bitPixels(std::countl_zero(byteAt(difference, byte)));
            }
        return cnPiecePixels;
    }

    /// How many pixels at the end of the piece before `end` have the value.
    int equalBefore(const std::uint8_t* end) const {
        for (int word = cnWords - 1; word >= 0; --word)
            if (const std::uint64_t difference = differenceAt(end - cnPieceBytes, word)) {
                const int byte = 7 - (isLittle ? std::countl_zero(difference) : std::countr_zero(difference)) / 8;
                const int bytesAfter = cnPieceBytes - 1 - word * cnWordBytes - byte;
                return pixelsIn(bytesAfter) + bitPixels(std::countr_zero(byteAt(difference, byte)));
            }
        return cnPiecePixels;
    }

    static constexpr bool isLittle = std::endian::native == std::endian::little;
    static constexpr int pixelsIn(int bytes) { return bytes * 8 / Format::cnBits; }
    static constexpr int bitPixels(int bits) { return Format::cnBits < 8 ? bits / Format::cnBits : 0; }
    static std::uint8_t byteAt(std::uint64_t word, int byte) {
        return static_cast<std::uint8_t>(word >> 8 * (isLittle ? byte : 7 - byte));
    }

    Value m_value;
    std::uint64_t m_words[cnWords];
};

} // namespace ovw::vimage

#endif // OVW_VIMAGE_PIXELRUNS_H
