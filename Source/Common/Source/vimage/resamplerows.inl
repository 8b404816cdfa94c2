// Squares of pixels averaged, rows weighed and pixels repeated.

#include "vimage/rowkernels.h"
#include "vimage/vectors.inl"

#include <algorithm>
#include <cstring>
#include <utility>

namespace ovw::vimage {
namespace {

constexpr std::uint32_t cnEvenBytes = 0x00FF00FF;

constexpr int cnLinePixels = 16;

/// Fetches a line of pixels that will be wanted some rows later: farther than the processor looks, which stops at the
/// end of a page, and into the second cache, which waits for more lines at a time than the first.
void prefetchRowsAhead(const BgraPixel* pixels, std::ptrdiff_t stride) {
    constexpr int cnRows = 12, cnSecondCache = 2;
    __builtin_prefetch(pixels + cnRows * stride, 0, cnSecondCache);
}

std::uint32_t wordAt(const BgraPixel* pixels, std::ptrdiff_t i) {
    std::uint32_t word;
    std::memcpy(&word, pixels + i, sizeof word);
    return word;
}

// The byte of a pixel that is its alpha.
constexpr int cnAlphaFirst = 0;
constexpr int cnAlphaLast = 3;

/// The sum of a square's column: two channels a word, of pixels that are not transparent, and their number.
struct ColourColumns {
    std::uint32_t even[cnBlockSize]; // bytes 0 and 2 of the pixels
    std::uint32_t odd[cnBlockSize];
    std::uint32_t visible[cnBlockSize];

    template <int Factor, int AlphaByte>
    void add(const BgraPixel* rows, std::ptrdiff_t stride, int count) {
        for (int i = 0; i < count; ++i) {
            std::uint32_t evenSum = 0, oddSum = 0, number = 0;
            for (int y = 0; y < Factor; ++y) {
                const std::uint32_t word = wordAt(rows + y * stride, i);
                const std::uint32_t mask = word >> AlphaByte * 8 & 0xFF ? ~0u : 0u;
                evenSum += word & mask & cnEvenBytes;
                oddSum += word >> 8 & mask & cnEvenBytes;
                number -= mask;
            }
            even[i] = evenSum, odd[i] = oddSum, visible[i] = number;
        }
    }
    /// Neighbours in pairs, into half as many columns.
    void halve(int count) {
        for (int i = 0; i < count; ++i) {
            even[i] = even[2 * i] + even[2 * i + 1];
            odd[i] = odd[2 * i] + odd[2 * i + 1];
            visible[i] = visible[2 * i] + visible[2 * i + 1];
        }
    }
};

/// Of squares without a transparent pixel.
template <int Factor>
void meanOfAll(const ColourColumns& columns, int count, std::uint32_t* words) {
    constexpr int cnShift = Factor == 2 ? 2 : Factor == 4 ? 4 : 6;
    for (int i = 0; i < count; ++i)
        words[i] = (columns.even[i] >> cnShift & cnEvenBytes) | (columns.odd[i] >> cnShift & cnEvenBytes) << 8;
}

template <int Factor, int AlphaByte>
void meanOfVisible(const ColourColumns& columns, int count, std::uint32_t* words) {
    for (int i = 0; i < count; ++i) {
        // Half a unit of the sum keeps whole quotients whole; nothing else comes that close to the next number.
        const auto number = static_cast<std::int32_t>(columns.visible[i]);
        const float scale = 1.0f / static_cast<float>(number ? number : 1);
        const auto mean = [&](std::uint32_t sum) {
            return static_cast<std::uint32_t>(
                static_cast<std::int32_t>((static_cast<float>(static_cast<std::int32_t>(sum)) + 0.5f) * scale));
        };
        const auto meanAlpha = [](std::uint32_t sum) { return sum / (Factor * Factor); };
        const std::uint32_t even = columns.even[i], odd = columns.odd[i];
        const std::uint32_t between = mean(odd & 0xFFFF) << 8 | mean(even >> 16) << 16;
        if constexpr (AlphaByte == cnAlphaFirst)
            words[i] = meanAlpha(even & 0xFFFF) | between | mean(odd >> 16) << 24;
        else
            words[i] = mean(even & 0xFFFF) | between | meanAlpha(odd >> 16) << 24;
    }
}

template <int Factor, int AlphaByte>
bool averageSquares(const BgraPixel* rows, std::ptrdiff_t stride, int count, BgraPixel* colours,
                    std::uint8_t* isVisible) {
    constexpr std::uint32_t cnArea = Factor * Factor;
    for (int y = 0; y < Factor; ++y)
        for (int i = 0; i < count * Factor; i += cnLinePixels)
            prefetchRowsAhead(rows + y * stride + i, stride);
    ColourColumns columns;
    columns.add<Factor, AlphaByte>(rows, stride, count * Factor);
    for (int width = Factor / 2; width > 0; width /= 2)
        columns.halve(count * width);
    std::uint32_t hidden = 0;
    std::uint8_t isAnyEmpty = 0;
    for (int i = 0; i < count; ++i) {
        hidden |= cnArea - columns.visible[i];
        isVisible[i] = columns.visible[i] != 0;
        isAnyEmpty |= isVisible[i] ^ 1;
    }
    std::uint32_t words[cnBlockSize];
    if (hidden)
        meanOfVisible<Factor, AlphaByte>(columns, count, words);
    else
        meanOfAll<Factor>(columns, count, words);
    for (int i = 0; i < count; ++i)
        std::memcpy(colours + i, words + i, sizeof *words);
    return !isAnyEmpty;
}

/// The sums of one or two rows of neighbours, as ColourColumns has them, but with the transparent pixels counted. Each
/// lane holds four pixels, the next lane those eight further on.
struct LaneColumns {
    Words blueRed{}, greenAlpha{}, hidden{};

    void add(const Words& pixels) {
        const auto isHidden = (pixels >> 24 == 0);
        const Words mask = reinterpret_cast<const Words&>(isHidden);
        blueRed += pixels & ~mask & cnEvenBytes;
        greenAlpha += pixels >> 8 & ~mask & cnEvenBytes;
        hidden -= mask;
    }
};

/// The squares of two rows' columns and of those that lie between.
struct LaneSquares {
    Words blueRed, greenAlpha, hidden;

    LaneSquares(const LaneColumns& columns, const LaneColumns& between)
        : blueRed(pairs(columns.blueRed, between.blueRed)), greenAlpha(pairs(columns.greenAlpha, between.greenAlpha)),
          hidden(pairs(columns.hidden, between.hidden)) {}
    /// sum / visible of the channels but alpha, which is sum / 4, by factors that keep whole quotients whole.
    Words mean() const {
        constexpr std::uint32_t cnQuarter = 1 << 13, cnThird = (1 << 15) / 3 + 1;
        const auto addWhere = [this](std::int32_t number, std::uint32_t value) {
            const auto isMore = reinterpret_cast<const Vector<std::int32_t>&>(hidden) > number;
            return reinterpret_cast<const Words&>(isMore) & value;
        };
        const Words share = cnQuarter + addWhere(0, cnThird - cnQuarter) + addWhere(1, 2 * cnQuarter - cnThird) +
                            addWhere(2, 2 * cnQuarter);
        return multiplyHigh(2 * blueRed, share | share << 16) | multiplyHigh(2 * greenAlpha, share | cnQuarter << 16)
                                                                    << 8;
    }

private:
    static Words pairs(const Words& values, const Words& between) {
        return shuffleLanes<std::uint32_t>(values, between, [](std::size_t i) { return 2 * i; }) +
               shuffleLanes<std::uint32_t>(values, between, [](std::size_t i) { return 2 * i + 1; });
    }
};

Words pixelsInLanes(const BgraPixel* pixels) {
    return gatherLanes<std::uint32_t>([=](int lane) { return pixels + 8 * lane; });
}

template <int Factor>
bool averageColours(const BgraPixel* rows, std::ptrdiff_t stride, int count, BgraPixel* colours,
                    std::uint8_t* isVisible) {
    return averageSquares<Factor, cnAlphaLast>(rows, stride, count, colours, isVisible);
}

/// The most frequent of the reductions, without a detour over memory.
template <>
bool averageColours<2>(const BgraPixel* rows, std::ptrdiff_t stride, int count, BgraPixel* colours,
                       std::uint8_t* isVisible) {
    constexpr std::uint32_t cnArea = 4;
    std::uint32_t hidden[cnBlockSize];
    Words empty{};
    int i = 0;
    for (; i + static_cast<int>(cnWords) <= count; i += cnWords) {
        LaneColumns columns, between;
        for (const BgraPixel* row : {rows + 2 * i, rows + 2 * i + stride}) {
            prefetchRowsAhead(row, stride);
            columns.add(pixelsInLanes(row));
            between.add(pixelsInLanes(row + 4));
        }
        const LaneSquares squares(columns, between);
        storeVector(colours + i, squares.mean());
        storeVector(hidden + i, squares.hidden);
        empty |= squares.hidden & cnArea;
    }
    const bool isRestVisible =
        i == count || averageSquares<2, cnAlphaLast>(rows + 2 * i, stride, count - i, colours + i, isVisible + i);
    if (isRestVisible && isZero(empty))
        return true;
    for (int j = 0; j < i; ++j)
        isVisible[j] = hidden[j] != cnArea;
    return false;
}

template <int Factor>
void addBytes(const std::uint8_t* rows, std::ptrdiff_t stride, int count, std::uint16_t* sums) {
    std::uint16_t columns[cnBlockSize];
    for (int i = 0; i < count * Factor; ++i) {
        int sum = 0;
        for (int y = 0; y < Factor; ++y)
            sum += rows[y * stride + i];
        columns[i] = static_cast<std::uint16_t>(sum);
    }
    for (int i = 0; i < count; ++i) {
        int sum = 0;
        for (int x = 0; x < Factor; ++x)
            sum += columns[i * Factor + x];
        sums[i] = static_cast<std::uint16_t>(sum);
    }
}

template <int Factor>
void averageTriples(const std::uint8_t* rows, std::ptrdiff_t stride, int count, std::uint8_t* means) {
    constexpr int cnTriple = 3;
    std::uint16_t columns[cnBlockSize * cnTriple];
    const int bytes = count * Factor * cnTriple;
    for (int i = 0; i < bytes; ++i) {
        int sum = 0;
        for (int y = 0; y < Factor; ++y)
            sum += rows[y * stride + i];
        columns[i] = static_cast<std::uint16_t>(sum);
    }
    // The means of what begins at every byte: of these the first of each square are taken.
    std::uint8_t all[cnBlockSize * cnTriple];
    for (int i = 0; i < bytes - (Factor - 1) * cnTriple; ++i) {
        int sum = 0;
        for (int x = 0; x < Factor; ++x)
            sum += columns[i + x * cnTriple];
        all[i] = static_cast<std::uint8_t>(sum / (Factor * Factor));
    }
    for (int i = 0; i < count; ++i)
        std::memcpy(means + i * cnTriple, all + i * Factor * cnTriple, cnTriple);
}

/// The sums of as many columns as a vector has pixels, in registers while rows are added.
class ColumnGroup {
public:
    void load(const ColumnSums& sums, int column) {
        forEach(m_channels,
                [&](std::size_t i, Doubles& v) { v = loadVector<Doubles>(sums.channels + 4 * column + i); });
        forEach(m_weights, [&](std::size_t i, Doubles& v) { v = loadVector<Doubles>(sums.weights + column + i); });
    }
    void store(ColumnSums& sums, int column) const {
        forEach(m_channels, [&](std::size_t i, const Doubles& v) { storeVector(sums.channels + 4 * column + i, v); });
        forEach(m_weights, [&](std::size_t i, const Doubles& v) { storeVector(sums.weights + column + i, v); });
    }
    void add(const BgraPixel* pixels, double weight) {
        const Words words = loadVector<Words>(pixels);
        const auto isHidden = (words >> 24 == 0);
        const Words hidden = reinterpret_cast<const Words&>(isHidden);
        if (isZero(hidden)) {
            addChannels(reinterpret_cast<const std::uint8_t*>(pixels), weight);
            forEach(m_weights, [&](std::size_t, Doubles& v) { v += weight; });
            return;
        }
        std::uint8_t visible[sizeof words];
        std::int32_t isVisible[cnWords];
        storeVector(visible, words & ~hidden);
        storeVector(isVisible, hidden + 1);
        addChannels(visible, weight);
        forEach(m_weights, [&](std::size_t i, Doubles& v) { v += weight * doublesOf(isVisible + i); });
    }

private:
    void addChannels(const std::uint8_t* bytes, double weight) {
        forEach(m_channels, [&](std::size_t i, Doubles& v) { v += weight * doublesOf(bytes + i); });
    }
    /// i: of the vector's first number.
    template <std::size_t N, class Vector, class Visit>
    static void forEach(Vector (&vectors)[N], Visit visit) {
        const auto visitAll = [&]<std::size_t... I>(std::index_sequence<I...>) {
            (visit(I * cnDoubles, vectors[I]), ...);
        };
        visitAll(std::make_index_sequence<N>());
    }

    Doubles m_channels[4 * cnWords / cnDoubles]{};
    Doubles m_weights[cnWords / cnDoubles]{};
};

void addPixel(const BgraPixel& pixel, double weight, int column, ColumnSums& sums) {
    if (pixel.alpha == 0)
        return;
    double* const channels = sums.channels + 4 * column;
    channels[0] += weight * pixel.blue;
    channels[1] += weight * pixel.green;
    channels[2] += weight * pixel.red;
    channels[3] += weight * pixel.alpha;
    sums.weights[column] += weight;
}

void addRows(const WeighedRow* rows, int rowCount, int count, bool isFirst, ColumnSums& sums) {
    int i = 0;
    for (; i + static_cast<int>(cnWords) <= count; i += cnWords) {
        ColumnGroup group;
        if (!isFirst)
            group.load(sums, i);
        for (int row = 0; row < rowCount; ++row) {
            if (i % cnLinePixels == 0)
                prefetchRowsAhead(rows[row].pixels + i, cnBlockSize);
            group.add(rows[row].pixels + i, rows[row].weight);
        }
        group.store(sums, i);
    }
    for (; i < count; ++i) {
        if (isFirst)
            std::fill_n(sums.channels + 4 * i, 4, 0.0), sums.weights[i] = 0;
        for (int row = 0; row < rowCount; ++row)
            addPixel(rows[row].pixels[i], rows[row].weight, i, sums);
    }
}

// In and out of memory by hand: without AVX, functions do not return these in one register.
typedef double FourDoubles __attribute__((vector_size(32)));
typedef std::int32_t FourInts __attribute__((vector_size(16)));

void addRuns(const ColumnSums& columns, const ColumnRun* runs, int count, PixelSums* sums) {
    for (int i = 0; i < count; ++i) {
        FourDoubles channels;
        std::memcpy(&channels, &sums[i].blue, sizeof channels);
        double weight = sums[i].weight;
        const auto add = [&](int x, double share) {
            FourDoubles column;
            std::memcpy(&column, columns.channels + 4 * x, sizeof column);
            channels += share * column;
            weight += share * columns.weights[x];
        };
        const ColumnRun& run = runs[i];
        if (run.begin >= run.end)
            continue;
        add(run.begin, run.firstWeight);
        for (int x = run.begin + 1; x < run.end - 1; ++x)
            add(x, 1.0);
        if (run.begin < run.end - 1)
            add(run.end - 1, run.lastWeight);
        std::memcpy(&sums[i].blue, &channels, sizeof channels);
        sums[i].weight = weight;
    }
}

void weighedColours(const PixelSums* sums, int count, double scale, BgraPixel* colours) {
    // Of twice the mean, the whole part plus 1 is twice what the mean is rounded to, or one more.
    const FourDoubles scales = {2, 2, 2, 2 * scale};
    const FourDoubles most = FourDoubles{} + 2.0 * cnByteMax;
    std::int32_t channels[4 * cnBlockSize];
    for (int i = 0; i < count; ++i) {
        const double weight = sums[i].weight;
        FourInts bytes = {cnByteMax, cnByteMax, cnByteMax, 0};
        if (weight > 0) {
            FourDoubles doubled;
            std::memcpy(&doubled, &sums[i].blue, sizeof doubled);
            doubled = doubled * scales / FourDoubles{weight, weight, weight, 1};
            bytes = (__builtin_convertvector(doubled < most ? doubled : most, FourInts) + 1) >> 1;
        }
        std::memcpy(channels + 4 * i, &bytes, sizeof bytes);
    }
    auto* const to = reinterpret_cast<std::uint8_t*>(colours);
    for (int i = 0; i < 4 * count; ++i)
        to[i] = byteOf(channels[i]);
}

template <int Factor, int Part, std::size_t... I>
Words repeatedPart(const Words& pixels, std::index_sequence<I...>) {
    return __builtin_shufflevector(pixels, pixels, static_cast<int>((Part * sizeof...(I) + I) / Factor)...);
}
template <int Factor, std::size_t... Parts>
void storeRepeated(const Words& pixels, BgraPixel* to, std::index_sequence<Parts...>) {
    (storeVector(to + Parts * cnWords, repeatedPart<Factor, Parts>(pixels, std::make_index_sequence<cnWords>())), ...);
}

template <int Factor>
void repeat(const BgraPixel* row, int count, BgraPixel* repeated) {
    int i = 0;
    for (; i + static_cast<int>(cnWords) <= count; i += cnWords)
        storeRepeated<Factor>(loadVector<Words>(row + i), repeated + i * Factor, std::make_index_sequence<Factor>());
    for (; i < count; ++i)
        for (int x = 0; x < Factor; ++x)
            repeated[i * Factor + x] = row[i];
}

} // namespace
} // namespace ovw::vimage
