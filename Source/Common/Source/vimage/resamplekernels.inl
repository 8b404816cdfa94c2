// The resampling kernels as one instruction set compiles them. The file that includes this one defines
// OVW_KERNEL_TABLE, the function that hands out the table, and is compiled with the flags of its instruction set.

#include "vimage/resamplekernels.h"

#include <cstring>

namespace ovw::vimage {
namespace {

constexpr std::uint32_t cnEvenBytes = 0x00FF00FF;

std::uint32_t wordAt(const BgraPixel* pixels, std::ptrdiff_t i) {
    std::uint32_t word;
    std::memcpy(&word, pixels + i, sizeof word);
    return word;
}

/// The sum of a square's column: two channels a word, of pixels that are not transparent, and their number.
struct ColourColumns {
    std::uint32_t blueRed[cnBlockSize];
    std::uint32_t greenAlpha[cnBlockSize];
    std::uint32_t visible[cnBlockSize];

    template <int Factor>
    void add(const BgraPixel* rows, std::ptrdiff_t stride, int count) {
        for (int i = 0; i < count; ++i) {
            std::uint32_t even = 0, odd = 0, number = 0;
            for (int y = 0; y < Factor; ++y) {
                const std::uint32_t word = wordAt(rows + y * stride, i);
                const std::uint32_t mask = word >> 24 ? ~0u : 0u;
                even += word & mask & cnEvenBytes;
                odd += word >> 8 & mask & cnEvenBytes;
                number -= mask;
            }
            blueRed[i] = even, greenAlpha[i] = odd, visible[i] = number;
        }
    }
    /// Neighbours in pairs, into half as many columns.
    void halve(int count) {
        for (int i = 0; i < count; ++i) {
            blueRed[i] = blueRed[2 * i] + blueRed[2 * i + 1];
            greenAlpha[i] = greenAlpha[2 * i] + greenAlpha[2 * i + 1];
            visible[i] = visible[2 * i] + visible[2 * i + 1];
        }
    }
};

/// Of squares without a transparent pixel.
template <int Factor>
void meanOfAll(const ColourColumns& columns, int count, std::uint32_t* words) {
    constexpr int cnShift = Factor == 2 ? 2 : Factor == 4 ? 4 : 6;
    for (int i = 0; i < count; ++i)
        words[i] = (columns.blueRed[i] >> cnShift & cnEvenBytes) | (columns.greenAlpha[i] >> cnShift & cnEvenBytes)
                                                                       << 8;
}

template <int Factor>
void meanOfVisible(const ColourColumns& columns, int count, std::uint32_t* words) {
    for (int i = 0; i < count; ++i) {
        // Half a unit of the sum keeps whole quotients whole; nothing else comes that close to the next number.
        const auto number = static_cast<std::int32_t>(columns.visible[i]);
        const float scale = 1.0f / static_cast<float>(number ? number : 1);
        const auto mean = [&](std::uint32_t sum) {
            return static_cast<std::uint32_t>(
                static_cast<std::int32_t>((static_cast<float>(static_cast<std::int32_t>(sum)) + 0.5f) * scale));
        };
        words[i] = mean(columns.blueRed[i] & 0xFFFF) | mean(columns.greenAlpha[i] & 0xFFFF) << 8 |
                   mean(columns.blueRed[i] >> 16) << 16 | (columns.greenAlpha[i] >> 16) / (Factor * Factor) << 24;
    }
}

template <int Factor>
void averageColours(const BgraPixel* rows, std::ptrdiff_t stride, int count, BgraPixel* colours,
                    std::uint8_t* isVisible) {
    constexpr std::uint32_t cnArea = Factor * Factor;
    ColourColumns columns;
    columns.add<Factor>(rows, stride, count * Factor);
    for (int width = Factor / 2; width > 0; width /= 2)
        columns.halve(count * width);
    std::uint32_t hidden = 0;
    for (int i = 0; i < count; ++i) {
        hidden |= cnArea - columns.visible[i];
        isVisible[i] = columns.visible[i] != 0;
    }
    std::uint32_t words[cnBlockSize];
    if (hidden)
        meanOfVisible<Factor>(columns, count, words);
    else
        meanOfAll<Factor>(columns, count, words);
    std::memcpy(colours, words, static_cast<std::size_t>(count) * sizeof *words);
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

/// isFirst: the sums begin with this row.
template <bool isFirst>
void addRow(const BgraPixel* row, int count, double weight, ColumnSums& sums) {
    const auto add = [](double& sum, double value) { sum = isFirst ? value : sum + value; };
    for (int i = 0; i < count; ++i) {
        const double visible = row[i].alpha ? weight : 0.0;
        add(sums.channels[4 * i], visible * row[i].blue);
        add(sums.channels[4 * i + 1], visible * row[i].green);
        add(sums.channels[4 * i + 2], visible * row[i].red);
        add(sums.channels[4 * i + 3], visible * row[i].alpha);
        add(sums.weights[i], visible);
    }
}

template <int Factor>
void repeat(const BgraPixel* row, int count, BgraPixel* repeated) {
    for (int i = 0; i < count; ++i)
        for (int x = 0; x < Factor; ++x)
            repeated[i * Factor + x] = row[i];
}

constexpr ResampleKernels cnKernels = {
    {averageColours<2>, averageColours<4>, averageColours<8>},
    {addBytes<2>, addBytes<4>, addBytes<8>},
    addRow<true>,
    addRow<false>,
    {repeat<2>, repeat<4>},
};

} // namespace

const ResampleKernels& OVW_KERNEL_TABLE() { return cnKernels; }

} // namespace ovw::vimage
