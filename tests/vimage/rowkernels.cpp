#include "vimage/rowkernels.h"

#include "mixing/instructionset.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

using namespace ovw::vimage;
using ovw::mixing::InstructionSet;

namespace {

constexpr int cnSets = 3;
constexpr int cnSide = cnBlockSize;
using Bytes = std::vector<std::uint8_t>;

/// Each test runs with the kernels of every instruction set that the machine has.
class RowKernelsTest : public testing::TestWithParam<int> {
protected:
    void SetUp() override {
        if (!ovw::mixing::forceInstructionSet(static_cast<InstructionSet>(GetParam())))
            GTEST_SKIP() << "The machine lacks the instruction set.";
    }
    ~RowKernelsTest() override { ovw::mixing::forceInstructionSet(m_best); }

    Bytes noise(std::size_t count) {
        Bytes bytes(count);
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(m_random());
        return bytes;
    }
    /// A block of which some pixels, and some whole stretches, are transparent.
    std::vector<BgraPixel> pixels(unsigned transparentOfEight) {
        std::vector<BgraPixel> result(cnSide * cnSide);
        const Bytes bytes = noise(result.size() * 4);
        std::memcpy(result.data(), bytes.data(), bytes.size());
        for (std::size_t i = 0; i < result.size(); ++i)
            if (m_random() % 8 < transparentOfEight || (transparentOfEight && i % 200 < 20))
                result[i].alpha = 0;
            else
                result[i].alpha |= 1;
        return result;
    }

    std::mt19937 m_random{7};
    const InstructionSet m_best = ovw::mixing::instructionSet();
};
INSTANTIATE_TEST_SUITE_P(InstructionSets, RowKernelsTest, testing::Range(0, cnSets));

TEST_P(RowKernelsTest, AverageSquares) {
    for (unsigned transparentOfEight : {0u, 1u, 6u})
        for (int power = 1; power <= 3; ++power)
            for (int count : {1, 3, 7, 8, 21, cnSide >> power}) {
                const int side = 1 << power;
                const std::vector<BgraPixel> block = pixels(transparentOfEight);
                BgraPixel colours[cnSide];
                std::uint8_t isVisible[cnSide];
                const bool areAll =
                    rowKernels().averageColours[power - 1](block.data(), cnSide, count, colours, isVisible);
                int visibleSquares = 0;
                for (int i = 0; i < count; ++i) {
                    int n = 0, sums[4] = {};
                    for (int j = 0; j < side * side; ++j) {
                        const BgraPixel& p = block[static_cast<std::size_t>(j / side * cnSide + i * side + j % side)];
                        if (p.alpha == 0)
                            continue;
                        ++n, sums[0] += p.blue, sums[1] += p.green, sums[2] += p.red, sums[3] += p.alpha;
                    }
                    visibleSquares += n > 0;
                    ASSERT_TRUE(areAll || (isVisible[i] != 0) == (n > 0));
                    if (n == 0)
                        continue;
                    ASSERT_TRUE(colours[i].blue == sums[0] / n && colours[i].green == sums[1] / n &&
                                colours[i].red == sums[2] / n && colours[i].alpha == sums[3] / (side * side))
                        << "square " << i << " of " << count << ", side " << side;
                }
                ASSERT_EQ(areAll, visibleSquares == count);
            }
}

TEST_P(RowKernelsTest, AddUpRows) {
    const std::vector<BgraPixel> block = pixels(2);
    const Bytes bytes = noise(cnSide * 8);
    for (int count : {1, 5, 16, 255}) {
        ColumnSums sums;
        const WeighedRow rows[] = {{&block[0], 0.3}, {&block[cnSide], 1.0}, {&block[2 * cnSide], 0.7}};
        rowKernels().addRows(rows, 2, count, true, sums);
        rowKernels().addRows(rows + 2, 1, count, false, sums);
        for (int i = 0; i < count; ++i) {
            double expected[5] = {};
            for (const WeighedRow& row : rows) {
                const BgraPixel& p = row.pixels[i];
                for (int k = 0; k < 5; ++k)
                    if (const int values[] = {p.blue, p.green, p.red, p.alpha, 1}; p.alpha)
                        expected[k] += row.weight * values[k];
            }
            ASSERT_EQ(std::memcmp(sums.channels + 4 * i, expected, 4 * sizeof *expected), 0);
            ASSERT_EQ(sums.weights[i], expected[4]);
        }
    }
    for (int power = 1; power <= 3; ++power) {
        std::uint16_t sums[cnSide];
        rowKernels().addBytes[power - 1](bytes.data(), cnSide, 31, sums);
        for (int i = 0, side = 1 << power; i < 31; ++i) {
            int sum = 0;
            for (int j = 0; j < side * side; ++j)
                sum += bytes[static_cast<std::size_t>(j / side * cnSide + i * side + j % side)];
            ASSERT_EQ(sums[i], sum);
        }
    }
}

TEST_P(RowKernelsTest, WeighRunsOfColumns) {
    ColumnSums columns;
    const std::vector<BgraPixel> block = pixels(3);
    const WeighedRow row = {block.data(), 0.4};
    rowKernels().addRows(&row, 1, cnSide, true, columns);
    const ColumnRun runs[] = {{0, 1, 0.25, 9}, {1, 3, 0.5, 0.125}, {7, 12, 1, 0.3}, {20, 20, 1, 1}, {252, 256, 0.1, 1}};
    constexpr int cnRuns = 5;
    PixelSums sums[cnRuns];
    sums[0] = {800, 50.5, 3, 1020, 1.5}; // sums grow from what is there
    std::vector<double> expected;
    for (int i = 0; i < cnRuns; ++i) {
        double at[5] = {sums[i].blue, sums[i].green, sums[i].red, sums[i].alpha, sums[i].weight};
        for (int x = runs[i].begin; x < runs[i].end; ++x) {
            const double share = x == runs[i].begin     ? runs[i].firstWeight
                                 : x == runs[i].end - 1 ? runs[i].lastWeight
                                                        : 1.0;
            for (int k = 0; k < 4; ++k)
                at[k] += share * columns.channels[4 * x + k];
            at[4] += share * columns.weights[x];
        }
        expected.insert(expected.end(), at, at + 5);
    }
    rowKernels().addRuns(columns, runs, cnRuns, sums);
    EXPECT_EQ(std::memcmp(sums, expected.data(), sizeof sums), 0);

    const PixelSums weighed[] = {{5, 2.5, 3, 8, 2}, {}, {510, 255.5, 0.4, 1000, 1}};
    BgraPixel colours[3];
    rowKernels().weighedColours(weighed, 3, 0.3125, colours);
    const BgraPixel wanted[] = {{3, 1, 2, 3}, {255, 255, 255, 0}, {255, 255, 0, 255}}; // 2.5 and 8 x 0.3125 = 2.5 go up
    EXPECT_EQ(std::memcmp(colours, wanted, sizeof colours), 0);
}

TEST_P(RowKernelsTest, TransposeAndReversePixelsOfEverySize) {
    struct {
        int width, height;
        bool isStreamed;
    } const cases[] = {{cnSide, cnSide, false}, {cnSide, cnSide, true}, {1, 1, false}, {37, 83, false}, {70, 9, false}};
    alignas(64) static std::uint8_t s_to[cnSide * cnSide * 4];
    for (int power = 0; power <= 2; ++power)
        for (const auto& c : cases) {
            const std::size_t size = std::size_t{1} << power, rowBytes = cnSide * size;
            const Bytes block = noise(cnSide * rowBytes);
            const auto pixel = [&](int x, int y) {
                return block.data() + static_cast<std::size_t>(y) * rowBytes + static_cast<std::size_t>(x) * size;
            };
            std::memset(s_to, 0, sizeof s_to);
            const auto step = static_cast<std::ptrdiff_t>(rowBytes);
            const RowKernels& kernels = rowKernels();
            (c.isStreamed ? kernels.transposeStreamed : kernels.transpose)[power](
                {s_to, step}, {const_cast<std::uint8_t*>(pixel(0, c.height - 1)), -step}, c.width, c.height);
            kernels.endStream();
            Bytes row(rowBytes);
            kernels.reverse[power](row.data(), pixel(0, 0), c.width);
            for (int x = 0; x < c.width; ++x) {
                for (int y = 0; y < c.height; ++y)
                    ASSERT_EQ(
                        std::memcmp(s_to + static_cast<std::size_t>(x) * rowBytes + static_cast<std::size_t>(y) * size,
                                    pixel(x, c.height - 1 - y), size),
                        0)
                        << size << " bytes: " << x << ", " << y << " of " << c.width << " x " << c.height;
                ASSERT_EQ(std::memcmp(&row[static_cast<std::size_t>(x) * size], pixel(c.width - 1 - x, 0), size), 0);
            }
            const auto used = static_cast<std::size_t>(c.height) * size;
            ASSERT_TRUE(std::all_of(s_to + used, s_to + rowBytes, [](std::uint8_t byte) { return byte == 0; }));
        }
}

TEST_P(RowKernelsTest, RepeatAndCopyWhatIsAsked) {
    const std::vector<BgraPixel> row = pixels(0);
    for (int count : {1, 13, 64}) {
        BgraPixel repeated[cnSide];
        for (int times : {2, 4}) {
            rowKernels().repeat[times / 4](row.data(), count, repeated);
            for (int i = 0; i < count * times; ++i)
                ASSERT_EQ(std::memcmp(&repeated[i], &row[static_cast<std::size_t>(i / times)], 4), 0);
        }
    }
    const Bytes from = noise(1000);
    for (std::size_t first : {0u, 1u, 17u, 63u})
        for (std::size_t count : {0u, 5u, 31u, 64u, 700u}) {
            Bytes to(1000, 7), expected = to;
            std::copy_n(from.begin() + 3, count, expected.begin() + static_cast<std::ptrdiff_t>(first));
            rowKernels().stream(&to[first], &from[3], count);
            rowKernels().endStream();
            ASSERT_EQ(to, expected) << count << " bytes to " << first;
        }
}

TEST_P(RowKernelsTest, FillAndShiftLongRows) {
    const Bytes from = noise(1000);
    for (std::size_t first : {0u, 5u, 63u})
        for (std::size_t count : {0u, 9u, 63u, 64u, 130u, 900u}) {
            const auto check = [&](const auto& fill, const auto& byteAt) {
                Bytes to(1000, 7), expected = to;
                for (std::size_t i = 0; i < count; ++i)
                    expected[first + i] = static_cast<std::uint8_t>(byteAt(i));
                fill(&to[first]);
                ASSERT_EQ(to, expected) << count << " bytes to " << first;
            };
            for (std::size_t period : {3u, 4u}) {
                Bytes pattern(cnPatternBytes + cnCacheLine);
                for (std::size_t i = 0; i < pattern.size(); ++i)
                    pattern[i] = from[i % period];
                check([&](std::uint8_t* to) { rowKernels().fillRepeated(to, count, pattern.data()); },
                      [&](std::size_t i) { return from[i % period]; });
            }
            for (int shift = 1; shift < 8; ++shift)
                check([&](std::uint8_t* to) { rowKernels().shiftBits(to, &from[1], count, shift); },
                      [&](std::size_t i) { return from[i + 1] << shift | from[i + 2] >> (8 - shift); });
        }
}

TEST_P(RowKernelsTest, FindLuminancesAndTones) {
    for (int count : {1, 30, cnSide}) {
        const Bytes pixels = noise(cnSide * 4), thresholds = noise(cnSide);
        std::uint8_t luminances[2][cnSide], tones[cnSide];
        rowKernels().luminances24(pixels.data(), count, 0, luminances[0]);
        rowKernels().luminances32(pixels.data(), count, 255, luminances[1]);
        const FourTones four{{0, 1, 2, 3}};
        for (bool onlyOpaque : {false, true}) {
            rowKernels().tones(pixels.data(), pixels.data() + cnSide, thresholds.data(), count, onlyOpaque, four,
                               tones);
            for (int i = 0; i < count; ++i) {
                const auto at = static_cast<std::size_t>(i);
                for (std::size_t bytes : {3u, 4u}) {
                    const std::uint8_t* const p = &pixels[at * bytes];
                    const int luminance = (2 * p[0] + 4 * p[1] + p[2]) / 7;
                    ASSERT_EQ(luminances[bytes - 3][i], bytes == 3 ? luminance : 255 - luminance);
                }
                const int opaque = pixels[at] >= thresholds[at], dark = pixels[cnSide + at] >= thresholds[at];
                ASSERT_EQ(tones[i], onlyOpaque && !opaque ? 0 : 2 * opaque + dark);
            }
        }
    }
}

} // namespace
