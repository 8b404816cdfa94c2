#include "ovwcmn/xcvoffscreen.h"

#include "pixelreference.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>
#include <vector>

namespace {

using namespace ovw::test;

constexpr int cnDepths[] = {1, 2, 8, 16, 24, 32};
constexpr int cnWidth = 530;
constexpr MonoRules cnDefaults;

std::vector<std::uint32_t> rowOf(const TestImage& image, int y) {
    std::vector<std::uint32_t> row(std::size_t(image->GetWidth()));
    image.visitRow(0, image->GetWidth(), y, 0, [&](std::uint8_t* base, int column, int line, int x) {
        row[std::size_t(x)] = base ? storedPixel(base, image->GetBlockRowBytes(), image.depth(), column, line)
                                   : (image.depth() >= 24 ? 0x00FFFFFF : 0);
    });
    return row;
}

void scribbleRow(TestImage& image, int y, std::mt19937& random) {
    image.visitRow(0, image->GetWidth(), y, 1, [&](std::uint8_t* base, int column, int row, int) {
        std::uint32_t p = std::uint32_t(random());
        if (image.depth() <= 8)
            p &= (1u << image.depth()) - 1;
        if (image.depth() == 2 && p == 1)
            p = 0;
        storePixel(base, image->GetBlockRowBytes(), image.depth(), column, row, p);
    });
}

int meanOf(std::uint32_t c) { return (redOf(c) + greenOf(c) + blueOf(c)) / 3; }

std::uint32_t scaledRgb(std::uint32_t c, int factor) {
    std::uint32_t rgb = 0;
    for (int shift : {0, 8, 16})
        rgb |= std::uint32_t(int(c >> shift & 255) * factor / 256) << shift;
    return rgb;
}

/// The stored number that one selected pixel becomes; nothing when it is left.
std::optional<std::uint32_t> polygonPixel(int depth, std::uint32_t p, std::uint32_t c, int mode, bool isRun) {
    const int a = alphaOf(c), a1 = a ? a + 1 : 0;
    const bool ink = c & 0x80808080;
    switch (depth) {
    case 1:
        if (mode == 1)
            return ink ? std::optional(1u) : std::nullopt;
        return mode == 0 || mode == 2 ? std::optional<std::uint32_t>(ink) : std::nullopt;
    case 2: {
        const std::uint32_t alone = a <= 127 ? 0 : c & 0x00808080 ? 2 : 3;
        const std::uint32_t v = isRun && mode != 1 ? twoBitsOf(a, lumOf(c), cnDefaults) : alone;
        if (mode == 1)
            return alone == 3 ? std::optional(3u) : std::nullopt;
        return mode == 0 || mode == 2 ? std::optional(v) : std::nullopt;
    }
    case 8:
        switch (mode) {
        case 0: return std::uint32_t(a);
        case 1: return std::max(p, std::uint32_t(a));
        case 2: return (p + std::uint32_t(a)) / 2;
        case 3: return std::min(p, std::uint32_t(255 - a));
        default: return {};
        }
    case 16: {
        const int coverage = int(p & 255), grey = int(p >> 8);
        const std::uint32_t replaced = stored16(255, redOf(c) * a1 / 256);
        switch (mode) {
        case 0: return replaced;
        case 1: return a && coverage < a1 ? std::optional(replaced) : std::nullopt;
        case 2: return stored16(coverage * a1 / 256, (grey * (256 - a1) + redOf(c) * a1) / 256);
        default: return {};
        }
    }
    case 24: {
        const std::uint32_t replaced = scaledRgb(c, a1);
        if (mode == 1)
            return meanOf(p) > meanOf(replaced) ? std::optional(replaced) : std::nullopt;
        if (mode == 2) {
            std::uint32_t rgb = 0;
            for (int shift : {0, 8, 16})
                rgb |= std::uint32_t((int(p >> shift & 255) * (256 - a1) + int(c >> shift & 255) * a1) / 256) << shift;
            return rgb;
        }
        return mode == 0 ? std::optional(replaced) : std::nullopt;
    }
    default:
        if (mode == 1)
            return a && alphaOf(p) < a1 ? std::optional(c) : std::nullopt;
        if (mode == 2) {
            std::uint32_t rgba = 0xFF000000;
            for (int shift : {0, 8, 16})
                rgba |= std::uint32_t((int(p >> shift & 255) * (256 - a1) + int(c >> shift & 255)) / 256) << shift;
            return rgba;
        }
        if (mode == 3)
            return alphaOf(p) > 255 - a ? std::optional((p & 0x00FFFFFF) | std::uint32_t(255 - a) << 24) : std::nullopt;
        return mode == 0 ? std::optional(c) : std::nullopt;
    }
}

struct RowCase {
    int x1, x2, mode, level, offset;
    std::uint32_t colour;
    bool hasMask, hasPattern;
};

class XCVOffscreenRows : public testing::TestWithParam<int> {
protected:
    /// Makes one row of both images anew, draws the case and compares with the rules.
    void check(TestImage& image, TestImage& mask, const RowCase& c, const std::uint8_t* pattern, bool clipBlack) {
        std::vector<std::uint32_t> expected = rowOf(image, 1);
        const std::vector<std::uint32_t> maskRow = rowOf(mask, 0);
        for (int x = c.x1; x <= c.x2; ++x) {
            if (c.hasPattern && c.level < pattern[x % 16])
                continue;
            const int maskX = x + c.offset;
            if (c.hasMask && (maskX < 0 || maskX >= cnWidth || !maskRow[std::size_t(maskX)]))
                continue;
            std::uint32_t& p = expected[std::size_t(x)];
            const auto drawn = polygonPixel(image.depth(), p, c.colour, c.mode, !c.hasMask && !c.hasPattern);
            const bool white = c.colour >> 31 && (c.colour & 0x00808080) && c.mode != 1;
            if (drawn && !(clipBlack && white && p != 0))
                p = clipBlack && white ? 2 : *drawn;
        }
        {
            XCVOffscreenAutoLock lock(image.get(), 0, 1, 1);
            XCVOffscreenAutoLock maskLock(mask.get(), 0, 0, 0);
            auto draw =
                clipBlack ? &XCVOffscreen::FillLineRowForPolygonClipBlack : &XCVOffscreen::FillLineRowForPolygon;
            (image.get()->*draw)(c.x1, c.x2, c.colour, c.mode, c.hasMask ? mask.get() : nullptr, c.offset,
                                 c.hasPattern ? pattern : nullptr, c.level);
        }
        const std::vector<std::uint32_t> got = rowOf(image, 1);
        const auto at = std::mismatch(got.begin(), got.end(), expected.begin());
        ASSERT_EQ(got, expected) << image.depth() << " bits, x " << at.first - got.begin() << " of " << c.x1 << '-'
                                 << c.x2 << ", mode " << c.mode << ", colour " << std::hex << c.colour << ", mask "
                                 << c.hasMask << ", pattern " << c.hasPattern;
    }
};

INSTANTIATE_TEST_SUITE_P(Depths, XCVOffscreenRows, testing::ValuesIn(cnDepths));

TEST_P(XCVOffscreenRows, PolygonRowsFollowTheRulesOfTheirDepth) {
    TestStore store;
    TestImage image(store, GetParam(), cnWidth, 2), mask(store, 1, cnWidth, 1);
    std::mt19937 random(42);
    std::uint8_t pattern[16];
    constexpr std::uint32_t colours[] = {0xFF000000, 0xFFFFFFFF, 0x80402010, 0x00FF80FF,
                                         0x7F90A0B0, 0xFFFF0000, 0xFF0000FF};
    for (int i = 0; i < 700 && !HasFatalFailure(); ++i) {
        scribbleRow(image, 1, random);
        scribbleRow(mask, 0, random);
        for (std::uint8_t& threshold : pattern)
            threshold = std::uint8_t(random());
        RowCase c{int(random() % cnWidth), 0, int(random() % 6) - 1, int(random() % 256),
                  int(random() % 20) - 10, 0, random() % 3 == 0,     random() % 3 == 0};
        c.x2 = std::min(cnWidth - 1, c.x1 + int(i % 2 ? random() % 24 : random() % 600) - 1);
        c.colour = i % 3 ? colours[i % std::size(colours)] : std::uint32_t(random());
        // Whether 2-bit images fill behind a mask as a run or by the pixel shows with some colours only.
        if (GetParam() == 2 && polygonPixel(2, 0, c.colour, 0, true) != polygonPixel(2, 0, c.colour, 0, false))
            c.hasMask = false;
        check(image, mask, c, pattern, false);
    }
}

TEST_P(XCVOffscreenRows, MissingBlocksAreCreatedClear) {
    TestStore store;
    TestImage image(store, GetParam(), cnWidth, 2), mask(store, 1, cnWidth, 1);
    check(image, mask, {200, 400, 0, 0, 0, 0xFF804020, false, false}, nullptr, false);
    EXPECT_EQ(image->GetBlockExist(2), 0);
    XCVOffscreenAutoLock lock(image.get(), 0, 0, 1);
    XCVOffscreenEditLock noEdit(image.get());
    image->FillLineRowForPolygon(500, 529, 0xFF000000, 0, nullptr, 0, nullptr, 0);
    EXPECT_EQ(image->GetBlockExist(2), 0);
}

TEST_P(XCVOffscreenRows, SearchFindsTheLargestCoverage) {
    const int depth = GetParam();
    TestStore store;
    TestImage image(store, depth, cnWidth, 2);
    XCVOffscreenAutoLock lock(image.get(), 0, 1, 0);
    EXPECT_EQ(image->SearchLineRowForPolygon(0, 529), depth == 24 ? 255 : 0);
    auto set = [&](int x, std::uint32_t value) { image.setValue(x, 1, value); };
    switch (depth) {
    case 1: set(300, 1); break;
    case 2: set(300, 2), set(299, 1); break;
    case 8: set(300, 200), set(301, 199); break;
    case 16: set(300, stored16(200, 0)), set(301, stored16(3, 255)); break;
    case 24: image.fillRow(0, cnWidth, 1, 0x050403), set(300, 0x0000C8), set(301, 0xFFFF07); break;
    default: set(300, 0xC8000000), set(301, 0x03FFFFFF);
    }
    image->MoveCursor(0, 1);
    EXPECT_EQ(image->SearchLineRowForPolygon(0, 529), depth <= 2 ? 255 : 200);
    image->MoveCursor(0, 1);
    EXPECT_EQ(image->SearchLineRowForPolygon(300, 300), depth <= 2 ? 255 : 200);
    image->MoveCursor(0, 1);
    const int right = depth == 8 ? 199 : depth == 24 ? 7 : depth >= 16 ? 3 : 0;
    EXPECT_EQ(image->SearchLineRowForPolygon(301, 529), right);
    EXPECT_EQ(image->SearchLineRowForPolygon(301, 300), 0);
    EXPECT_EQ(image->GetBlockExist(0), depth == 24);
}

TEST_P(XCVOffscreenRows, ClipBlackSparesBlackInkOnTwoBits) {
    TestStore store;
    TestImage image(store, GetParam(), cnWidth, 2), mask(store, 1, cnWidth, 1);
    std::mt19937 random(11);
    std::uint8_t pattern[16] = {0, 200, 40, 90};
    if (GetParam() != 2) {
        scribbleRow(image, 1, random);
        const auto before = rowOf(image, 1);
        XCVOffscreenAutoLock lock(image.get(), 0, 1, 1);
        image->FillLineRowForPolygonClipBlack(0, 500, 0xFFFFFFFF, 0, nullptr, 0, nullptr, 0);
        EXPECT_EQ(rowOf(image, 1), before);
        return;
    }
    for (int i = 0; i < 300 && !HasFatalFailure(); ++i) {
        scribbleRow(image, 1, random);
        scribbleRow(mask, 0, random);
        const std::uint32_t colour = i % 4 == 0 ? 0xFF000000 : i % 4 == 1 ? 0x40FFFFFF : 0xFFFFFFFF;
        check(image, mask,
              {i, std::min(cnWidth - 1, i + i % 37 * 9), i % 4, i % 256, i % 5, colour, i % 3 == 1, i % 5 == 1},
              pattern, true);
    }
}

TEST(XCVOffscreenRowMasks, MaskOfAnotherResolutionIsReadByScale) {
    TestStore store;
    TestImage image(store, 8, 300, 1), mask(store, 1, 150, 1);
    image->SetResolution(200);
    mask->SetResolution(100);
    mask.fillRow(130, 140, 0, 1);
    XCVOffscreenAutoLock lock(image.get(), 0, 0, 1);
    XCVOffscreenAutoLock maskLock(mask.get(), 0, 0, 0);
    image->FillLineRowForPolygon(0, 299, 0xFF000000, 0, mask.get(), 0, nullptr, 0);
    for (int x = 0; x < 300; ++x)
        ASSERT_EQ(image.value(x, 0), x >= 260 && x < 280 ? 255u : 0u) << x;
}

TEST(XCVOffscreenRowMasks, ARowThroughAMaskOfMissingBlocksIsEmpty) {
    TestStore store;
    for (int depth : {2, 32}) {
        TestImage image(store, depth, 600, 1), mask(store, 1, 600, 1);
        XCVOffscreenAutoLock lock(image.get(), 0, 0, 1);
        XCVOffscreenAutoLock maskLock(mask.get(), 0, 0, 0);
        image->FillLineRowForPolygon(0, 599, 0xFF000000, 0, mask.get(), 0, nullptr, 0);
        EXPECT_EQ(rowOf(image, 0), std::vector<std::uint32_t>(600, depth == 32 ? 0xFFFFFFu : 0u));
        EXPECT_EQ(mask->IsBlockExist(), 0);
    }
}

// ---- CheckLinePixel

struct Probe {
    int result, x1, x2;
    bool operator==(const Probe&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Probe& p) {
        return out << p.result << ": " << p.x1 << ' ' << p.x2;
    }
};

Probe probe(const TestImage& image, int x1, int x2, int y = 0) {
    const int result = image->CheckLinePixel(y, x1, x2);
    return {result, x1, x2};
}

TEST(XCVOffscreenCheckLinePixel, Densities) {
    TestStore store;
    TestImage image(store, 8, 600, 1);
    EXPECT_EQ(probe(image, 0, 255), (Probe{0, 0, 255}));
    image.fillRow(10, 20, 0, 128);
    image.setValue(30, 0, 127);
    EXPECT_EQ(probe(image, 10, 19), (Probe{1, 10, 19}));
    EXPECT_EQ(probe(image, 0, 9), (Probe{0, 0, 9}));
    EXPECT_EQ(probe(image, 20, 255), (Probe{0, 20, 255}));
    EXPECT_EQ(probe(image, 3, 255), (Probe{-1, 10, 255}));
    EXPECT_EQ(probe(image, 12, 40), (Probe{-1, 12, 40}));
    EXPECT_EQ(probe(image, 250, 260), (Probe{-1, 250, 260})); // two blocks
    EXPECT_EQ(probe(image, -1, 5).result, -1);
    EXPECT_EQ(probe(image, 590, 610).result, -1);
    XCVOffscreenParamLock thresholds(image.get(), 126, 128);
    EXPECT_EQ(probe(image, 30, 30), (Probe{1, 30, 30}));
    EXPECT_EQ(image->GetLockCount(), 0);
    EXPECT_EQ(image->GetBlockExist(1), 0);
}

TEST(XCVOffscreenCheckLinePixel, BitsGoByBytes) {
    TestStore store;
    TestImage image(store, 1, 600, 1);
    EXPECT_EQ(probe(image, 0, 200), (Probe{0, 0, 200}));
    image.fillRow(16, 48, 0, 1);
    EXPECT_EQ(probe(image, 16, 47), (Probe{1, 16, 47}));
    EXPECT_EQ(probe(image, 20, 30), (Probe{1, 20, 30}));
    EXPECT_EQ(probe(image, 0, 15), (Probe{0, 0, 15}));
    EXPECT_EQ(probe(image, 20, 60).result, -1);
    EXPECT_EQ(probe(image, 3, 200), (Probe{-1, 16, 48}));
    EXPECT_EQ(probe(image, 3, 40), (Probe{-1, 16, 40}));
    EXPECT_EQ(probe(image, 256, 599), (Probe{0, 256, 599}));
    EXPECT_EQ(probe(image, 60, 599), (Probe{0, 60, 599}));
    image.fillRow(48, 600, 0, 1);
    EXPECT_EQ(probe(image, 16, 591), (Probe{1, 16, 591}));
    EXPECT_EQ(probe(image, 0, 591).result, -1);
}

TEST(XCVOffscreenCheckLinePixel, OtherDepthsDoNotKnow) {
    TestStore store;
    for (int depth : {2, 16, 24, 32}) {
        TestImage image(store, depth, 30, 1);
        EXPECT_EQ(probe(image, 3, 20), (Probe{-1, 3, 20}));
    }
}

} // namespace
