// Pixels of one, two and four bytes transposed and reversed, and memory copied past the caches.

#include "vimage/rowkernels.h"
#include "vimage/vectors.inl"

#include <algorithm>

namespace ovw::vimage {
namespace {

/// A lane's number of columns, of as many rows as a vector has elements, into rows. Each lane takes rows of its own, so
/// that interleaving lanes as often as their elements double turns all of them.
template <class T, bool isStreamed>
void transposeSquare(const PixelGrid& to, const PixelGrid& from, int x, int y) {
    constexpr int cnSide = static_cast<int>(VectorTypes<T>::cnInLane);
    constexpr int cnBytes = static_cast<int>(sizeof(T));
    std::array<Vector<T>, cnSide> rows, turned;
    for (int i = 0; i < cnSide; ++i)
        rows[static_cast<std::size_t>(i)] =
            gatherLanes<T>([&](int lane) { return from.row(y + lane * cnSide + i) + x * cnBytes; });
    for (int step = 1; step < cnSide; step *= 2, rows = turned)
        for (std::size_t i = 0; i < cnSide / 2; ++i) {
            turned[2 * i] = interleaveLow<T>(rows[i], rows[i + cnSide / 2]);
            turned[2 * i + 1] = interleaveHigh<T>(rows[i], rows[i + cnSide / 2]);
        }
    for (int i = 0; i < cnSide; ++i)
        if constexpr (isStreamed)
            streamVector(to.row(x + i) + y * cnBytes, rows[static_cast<std::size_t>(i)]);
        else
            storeVector(to.row(x + i) + y * cnBytes, rows[static_cast<std::size_t>(i)]);
}

template <class T>
void transposeOneByOne(const PixelGrid& to, const PixelGrid& from, int left, int right, int top, int bottom) {
    constexpr int cnBytes = static_cast<int>(sizeof(T));
    for (int x = left; x < right; ++x)
        for (int y = top; y < bottom; ++y)
            std::memcpy(to.row(x) + y * cnBytes, from.row(y) + x * cnBytes, cnBytes);
}

/// So many source rows at a time that every line of the destination's cache is written whole.
template <class T, bool isStreamed>
void transpose(const PixelGrid& to, const PixelGrid& from, int width, int height) {
    constexpr int cnBytes = static_cast<int>(sizeof(T));
    constexpr int cnColumns = static_cast<int>(VectorTypes<T>::cnInLane);
    constexpr int cnRows = static_cast<int>(VectorTypes<T>::cnCount);
    constexpr int cnBand = static_cast<int>(cnCacheLine) / cnBytes;
    const int evenWidth = width - width % cnColumns;
    for (int top = 0; top < height; top += cnBand) {
        const int bottom = std::min(top + cnBand, height);
        const int evenBottom = bottom - (bottom - top) % cnRows;
        for (int x = 0; x < evenWidth; x += cnColumns) {
            // Rows of the destination lie too far apart for the processor to foresee them.
            if (!isStreamed && x + 5 * cnColumns <= width)
                for (int i = 0; i < cnColumns; ++i)
                    __builtin_prefetch(to.row(x + 4 * cnColumns + i) + top * cnBytes, 1);
            // And the next band of the source in time.
            if (isStreamed && x * cnBytes % cnCacheLine == 0 && bottom + cnBand <= height)
                for (int i = 0; i < cnBand; ++i)
                    __builtin_prefetch(from.row(bottom + i) + x * cnBytes);
            for (int y = top; y < evenBottom; y += cnRows)
                transposeSquare<T, isStreamed>(to, from, x, y);
        }
        transposeOneByOne<T>(to, from, 0, evenWidth, evenBottom, bottom);
        transposeOneByOne<T>(to, from, evenWidth, width, top, bottom);
    }
}

/// Writing lines in pieces past the caches is slower than through them.
template <class T>
void transposeStreamed(const PixelGrid& to, const PixelGrid& from, int width, int height) {
    transpose<T, sizeof(T) == 4 && cnVectorBytes * 2 >= cnCacheLine>(to, from, width, height);
}

template <class T, std::size_t... I>
Vector<T> reversed(const Vector<T>& vector, std::index_sequence<I...>) {
    return __builtin_shufflevector(vector, vector, static_cast<int>(sizeof...(I) - 1 - I)...);
}

/// Reads forward, as the processor foresees.
template <class T>
void reverse(std::uint8_t* to, const std::uint8_t* from, int count) {
    constexpr auto cnBytes = static_cast<std::ptrdiff_t>(sizeof(T));
    constexpr int cnCount = static_cast<int>(VectorTypes<T>::cnCount);
    to += count * cnBytes;
    int i = 0;
    for (; i + cnCount <= count; i += cnCount, from += cnVectorBytes)
        storeVector(to -= cnVectorBytes, reversed<T>(loadVector<Vector<T>>(from), std::make_index_sequence<cnCount>()));
    for (; i < count; ++i, from += cnBytes)
        std::memcpy(to -= cnBytes, from, cnBytes);
}

void stream(std::uint8_t* to, const std::uint8_t* from, std::size_t bytes) {
    const std::size_t unaligned = -reinterpret_cast<std::uintptr_t>(to) % cnVectorBytes;
    std::size_t i = std::min(unaligned, bytes);
    std::memcpy(to, from, i);
    for (; i + cnVectorBytes <= bytes; i += cnVectorBytes)
        streamVector(to + i, loadVector<Words>(from + i));
    std::memcpy(to + i, from + i, bytes - i);
}

} // namespace
} // namespace ovw::vimage
