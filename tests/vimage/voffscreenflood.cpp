#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcvoffscreen.h"

#include "floodreference.h"
#include "picture.h"
#include "support/scopes.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <random>

namespace {

using namespace ovw::test;

FloodOutcome floodFill(const FloodCase& c, int abortable = 0) {
    FloodOutcome out;
    const int margin = c.margin.value_or(0);
    switch (c.bits) {
    case 1:
        out.result = XCVOffscreen::FloodFillFrom1Bit(c.dest, out.changed, c.seed, c.colour, c.source, c.second,
                                                     c.offset, c.clip, &out.count, abortable);
        break;
    case 2:
        out.result = XCVOffscreen::FloodFillFrom2Bit(c.dest, out.changed, c.seed, c.colour, c.source, c.offset, c.clip,
                                                     &out.count, abortable);
        break;
    case 24:
        out.result = XCVOffscreen::FloodFillFromGeneric(c.dest, out.changed, c.seed, c.colour, c.source, c.second,
                                                        c.offset, margin, &out.count, abortable);
        break;
    default: {
        const auto plain = c.bits == 8    ? XCVOffscreen::FloodFillFrom8BitNoMargin
                           : c.bits == 16 ? XCVOffscreen::FloodFillFrom16BitNoMargin
                                          : XCVOffscreen::FloodFillFrom32BitNoMargin;
        const auto near = c.bits == 8    ? XCVOffscreen::FloodFillFrom8Bit
                          : c.bits == 16 ? XCVOffscreen::FloodFillFrom16Bit
                                         : XCVOffscreen::FloodFillFrom32Bit;
        out.result =
            c.margin
                ? near(c.dest, out.changed, c.seed, c.colour, c.source, c.offset, c.clip, margin, &out.count, abortable)
                : plain(c.dest, out.changed, c.seed, c.colour, c.source, c.offset, c.clip, &out.count, abortable);
    }
    }
    return out;
}

/// Two images of each role, equal until one is filled by the library and the other by the rules.
class FloodFillFuzz : public testing::Test {
protected:
    static constexpr int cnWidth = 520, cnHeight = 8;

    /// Few values, in strips along the rows, so that runs cross blocks and regions branch; one block stays missing.
    void strew(TestImage& image, unsigned seed) {
        std::mt19937 random(seed);
        const std::uint32_t values[] = {
            0, 0x00FFFFFF, std::uint32_t(0xFF000000 | random()), 0x80808080, std::uint32_t(random()), 3};
        for (int y = 0; y < image->GetHeight(); ++y)
            for (int x = 0; x < image->GetWidth();) {
                const int length = random() % 4 ? 1 + int(random() % 5) : 40 + int(random() % 300);
                const std::uint32_t v = values[random() % 3 ? 1 : random() % std::size(values)];
                const int end = std::min(x + length, image->GetWidth());
                if (x / 256 != m_missing && (end - 1) / 256 != m_missing)
                    image.fillRow(x, end, y, image.depth() <= 8 ? v & ((1u << image.depth()) - 1) : v);
                x = end;
            }
    }

    void expectAlike(const FloodCase& c, TestImage& dest, TestImage& dest2, const std::string& what) {
        FloodCase other = c;
        other.dest = dest2.get();
        if (c.source == c.dest)
            other.source = dest2.get();
        if (c.second == c.dest)
            other.second = dest2.get();
        const FloodOutcome wanted = FloodReference(other).run();
        const FloodOutcome got = floodFill(c);
        ASSERT_EQ(got.result, wanted.result) << what;
        ASSERT_EQ(got.count, wanted.count) << what;
        ASSERT_TRUE(got.changed == wanted.changed) << what << got.changed.top << " " << wanted.changed.top;
        ASSERT_EQ(Picture(dest2).difference(dest), "") << what;
        for (int i = 0; i < dest->GetBlockCount(nullptr, nullptr); ++i)
            ASSERT_EQ(dest->GetBlockExist(i), dest2->GetBlockExist(i)) << what << " block " << i;
        ASSERT_EQ(dest->GetLockCount(), 0);
        for (int i = 0; i < dest->GetBlockCount(nullptr, nullptr); ++i)
            ASSERT_FALSE(dest->CheckBlockLock(i)) << what;
    }

    int m_missing = 1; // block column
    TestStore m_store{32u << 20};
};

TEST_F(FloodFillFuzz, FollowsTheStepsForEveryPairOfDepths) {
    const std::uint32_t colours[] = {0xFF3060C0, 0x80FFFFFF, 0x00000000, 0x20808080};
    std::mt19937 random(5);
    for (int bits : cnDepths)
        for (int destDepth : cnDepths)
            for (int sourceDepth : cnDepths) {
                TestImage dest(m_store, destDepth, cnWidth, cnHeight), dest2(m_store, destDepth, cnWidth, cnHeight);
                TestImage source(m_store, sourceDepth, 400, 7), second(m_store, 8, 300, 9);
                const unsigned seed = unsigned(random());
                m_missing = int(random() % 3);
                strew(dest, seed), strew(dest2, seed), strew(source, seed + 1), strew(second, seed + 2);
                const bool hasSecond = (bits == 1 || bits == 24) && random() % 2;
                const bool hasMargin = bits == 24 || (bits >= 8 && random() % 2);
                const FloodCase c{bits,
                                  dest.get(),
                                  source.get(),
                                  hasSecond ? second.get() : nullptr,
                                  XCPoint(int(random() % cnWidth), int(random() % cnHeight)),
                                  colours[random() % 4],
                                  XCPoint(int(random() % 200) - 100, int(random() % 5) - 2),
                                  bits == 24 ? XCRect(0, 0, cnWidth, cnHeight) : XCRect(-3, 1, 515, 9),
                                  hasMargin ? std::optional(int(random() % 3) * 40) : std::nullopt};
                expectAlike(c, dest, dest2,
                            std::to_string(bits) + ": " + std::to_string(sourceDepth) + " to " +
                                std::to_string(destDepth));
                if (HasFatalFailure())
                    return;
            }
}

TEST_F(FloodFillFuzz, JudgesTheDestinationItself) {
    std::mt19937 random(9);
    for (int round = 0; round < 90; ++round) {
        const int depth = cnDepths[round % 6];
        TestImage dest(m_store, depth, cnWidth, cnHeight), dest2(m_store, depth, cnWidth, cnHeight);
        const unsigned seed = unsigned(random());
        m_missing = round % 4; // 3: none
        strew(dest, seed), strew(dest2, seed);
        const bool isShifted = random() % 3 == 0, hasMargin = depth == 24 || (depth >= 8 && random() % 2);
        const FloodCase c{depth,
                          dest.get(),
                          dest.get(),
                          nullptr,
                          XCPoint(int(random() % cnWidth), int(random() % cnHeight)),
                          std::uint32_t(random()) | (random() % 2 ? 0xFF000000 : 0),
                          isShifted ? XCPoint(int(random() % 7) - 3, int(random() % 3) - 1) : XCPoint(),
                          depth == 24 ? XCRect(0, 0, cnWidth, cnHeight) : XCRect(0, 0, 256 + round, 7),
                          hasMargin ? std::optional(int(random() % 40)) : std::nullopt};
        expectAlike(c, dest, dest2, "round " + std::to_string(round) + ", depth " + std::to_string(depth));
        if (HasFatalFailure())
            return;
    }
}

// ---- Worked out by hand

class XCVOffscreenFloodFill : public testing::Test {
protected:
    TestStore m_store{64u << 20};
    XCRect m_changed{1, 2, 3, 4};
    int m_count = -1;

    int fill(TestImage& image, XCPoint seed, std::uint32_t colour, XCRect clip, int margin = 0, int abortable = 0) {
        return image->FloodFill(m_changed, seed, colour, image.get(), nullptr, XCPoint(), clip, margin, &m_count,
                                abortable);
    }
};

TEST_F(XCVOffscreenFloodFill, FillsOnePixelAndTellsTheRowsThatItExplored) {
    TestImage image(m_store, 32, 300, 300);
    image.setValue(257, 100, 0xFF0000FF);
    ASSERT_EQ(fill(image, XCPoint(257, 100), 0xFF00FF00, image->GetRect()), 1);
    EXPECT_EQ(m_count, 1);
    EXPECT_TRUE(m_changed == XCRect(257, 99, 258, 102)) << m_changed.top << " " << m_changed.bottom;
    EXPECT_EQ(image.value(257, 100), 0xFF00FF00);
    ASSERT_EQ(fill(image, XCPoint(257, 100), 0xFF00FF00, image->GetRect()), 0) << "filled already";
    EXPECT_TRUE(m_changed == XCRect(257, 99, 258, 102));
    EXPECT_EQ(fill(image, XCPoint(300, 0), 0, image->GetRect()), 0) << "outside";
    EXPECT_EQ(fill(image, XCPoint(10, 10), 0, XCRect(20, 20, 30, 30)), 0) << "outside clip";
    EXPECT_EQ(m_count, 1);
}

TEST_F(XCVOffscreenFloodFill, EndsForEveryColourOf24Bits) {
    TestImage image(m_store, 24, 300, 20);
    for (std::uint32_t colour : {0xFF102030u, 0x80FFFFFEu, 0x00654321u}) {
        ASSERT_EQ(fill(image, XCPoint(3, 3), colour, XCRect(0, 0, 5, 5)), 1) << "clip does not bound it";
        EXPECT_EQ(m_count, 300 * 20);
        EXPECT_EQ(image.value(299, 19), colour & 0x00FFFFFF);
    }
}

TEST_F(XCVOffscreenFloodFill, StaysInTheClipRectangleAndTheImage) {
    for (int depth : {1, 2, 8, 16, 32}) {
        TestImage image(m_store, depth, 300, 30);
        ASSERT_EQ(fill(image, XCPoint(20, 20), 0xFF000000 | 0x808080, XCRect(10, 15, 30, INT_MAX)), 1) << depth;
        EXPECT_EQ(m_count, 20 * 15) << depth;
        EXPECT_TRUE(m_changed == XCRect(10, 15, 30, 31)) << depth << ": explored one row beyond the image";
        EXPECT_EQ(image.value(9, 20), clearOf(depth)) << depth;
        ASSERT_EQ(fill(image, XCPoint(0, 0), 0xFF000000 | 0x808080, XCRect(INT_MIN, INT_MIN, INT_MAX, INT_MAX)), 1);
        EXPECT_EQ(m_count, 300 * 30 - 20 * 15) << depth;
    }
}

TEST_F(XCVOffscreenFloodFill, TakesExtremeOffsetsAndMargins) {
    TestImage image(m_store, 32, 40, 40), source(m_store, 32, 40, 40);
    for (const XCPoint& offset : {XCPoint(INT_MIN, INT_MIN), XCPoint(INT_MAX, INT_MAX)}) {
        image->DestroyAllBlock();
        ASSERT_EQ(image->FloodFill(m_changed, XCPoint(5, 5), 0xFF0000FF, source.get(), nullptr, offset,
                                   image->GetRect(), INT_MAX, &m_count, 0),
                  1);
        EXPECT_EQ(m_count, 1600);
    }
    EXPECT_EQ(fill(image, XCPoint(5, 5), 0xFF000000, image->GetRect(), INT_MIN), 1);
    EXPECT_EQ(m_count, 0) << "nothing is near by a negative margin";
}

TEST_F(XCVOffscreenFloodFill, NeedsASource) {
    TestImage image(m_store, 8, 20, 20);
    const XCRect all(0, 0, 20, 20);
    EXPECT_EQ(image->FloodFill(m_changed, {}, 0xFF000000, nullptr, nullptr, {}, all, 0, &m_count, 0), 0);
    EXPECT_EQ(image->FloodFill(m_changed, {}, 0xFF000000, nullptr, image.get(), {}, all, 0, nullptr, 0), 1);
    EXPECT_EQ(image.value(19, 19), 255u);
    EXPECT_EQ(XCVOffscreen::FloodFillFrom8Bit(nullptr, m_changed, {}, 0, image.get(), {}, all, 0, nullptr, 0), 0);
}

int s_polls = 0;

TEST_F(XCVOffscreenFloodFill, CanBeCancelledHalfway) {
    struct Callback {
        explicit Callback(XCAbort::Callback callback) { XCAbort::SetCallback(callback); }
        ~Callback() { XCAbort::SetCallback(nullptr); }
    };
    TestImage image(m_store, 8, 600, 100);
    s_polls = 0;
    const Callback callback([] { return int(++s_polls > 41); });
    EXPECT_EQ(errorOf([&] { fill(image, XCPoint(0, 0), 0xFF000000, image->GetRect(), 0, 1); }), 0x20010004);
    EXPECT_EQ(image->GetLockCount(), 0);
    // Two questions a row, the second one after the pixel at the seed's column.
    EXPECT_EQ(m_count, 20 * 600 + 1);
    EXPECT_TRUE(m_changed == XCRect(0, 0, 600, 21)) << m_changed.right << " " << m_changed.bottom;
    EXPECT_EQ(image.value(599, 19), 255u);
    EXPECT_EQ(image.value(1, 20), 0u);
    s_polls = 0;
    EXPECT_EQ(fill(image, XCPoint(0, 99), 0xFF000000, image->GetRect(), 0, 2), 1) << "only 1 asks";
    EXPECT_EQ(s_polls, 0);
}

TEST_F(XCVOffscreenFloodFill, WorksThroughMoreBlocksThanTheBudgetHolds) {
    TestStore store(1u << 20);
    TestImage image(store, 32, 256 * 5, 256 * 3);
    ASSERT_EQ(fill(image, XCPoint(700, 300), 0xFF112233, image->GetRect(), 1), 1);
    EXPECT_EQ(m_count, 256 * 5 * 256 * 3);
    EXPECT_EQ(image.value(1279, 767), 0xFF112233);
    EXPECT_EQ(image.value(0, 0), 0xFF112233);
}

} // namespace
