#include "ovwcmn/xcpixelmixer.h"
#include "ovwcmn/xcvoffpixelmixer.h"
#include "ovwcmn/xcvoffscreen.h"

#include "picture.h"
#include "pixelreference.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cmath>
#include <functional>
#include <optional>
#include <random>
#include <utility>
#include <vector>

namespace {

using namespace ovw::test;

constexpr std::uint32_t cnPale = 0xFFF0E0D0; // white to 2-bit images, masked or not
constexpr int cnWidth = 300, cnHeight = 270; // two by two blocks

bool holds(const tagRECT& r, int x, int y) { return r.left <= x && x < r.right && r.top <= y && y < r.bottom; }

class XCVOffscreenShapes : public testing::Test {
protected:
    /// The shape drawn into a new image, which draw gets, locked for editing.
    template <class Draw>
    TestImage drawn(int depth, Draw draw) {
        TestImage image(m_store, depth, cnWidth, cnHeight);
        XCVOffscreenAutoLock lock(image.get(), 1);
        draw(*image.get());
        return image;
    }

    TestStore m_store{64u << 20};
};

// ---- Circles

/// Numbers the pixels that it meets.
class Numbering : public XCPixelMixer {
public:
    void Do32Bit(std::uint32_t* p, std::uint32_t, std::uint8_t) override { *p = ++m_count; }

private:
    std::uint32_t m_count = 0;
};

/// The midpoint circle, step by step.
void walkCircle(int cx, int cy, int r, const std::function<void(int, int)>& plot) {
    int x = 0, y = r, e = 3 - 2 * r;
    while (x <= y) {
        for (auto [dx, dy] : {std::pair{x, y}, {y, x}})
            for (auto [sx, sy] : {std::pair{1, 1}, {-1, 1}, {1, -1}, {-1, -1}})
                plot(cx + sx * dx, cy + sy * dy);
        if (e < 0) {
            e += 4 * x + 6;
        } else {
            e += 4 * (x - y) + 10;
            --y;
        }
        ++x;
    }
}

TEST_F(XCVOffscreenShapes, CirclesPlotTheMidpointWalkInItsOrder) {
    std::mt19937 random(5);
    for (int i = 0; i < 160; ++i) {
        const int r = i < 60 ? i : int(random() % 700);
        const int cx = int(random() % 500) - 100, cy = int(random() % 500) - 100;
        const tagRECT clip = i % 2 ? tagRECT{40, 30, 280, 260} : tagRECT{0, 0, cnWidth, cnHeight};
        TestImage image(m_store, 32, cnWidth, cnHeight);
        Picture expected(image);
        Numbering numbering;
        XCVOffPixelMixer mixer;
        mixer.SetNode(&numbering);
        mixer.SetDstOffscreen(image.get());
        XCVOffscreenAutoLock lock(image.get(), 1);
        image->Circle(cx, cy, r, 0, &mixer, nullptr, i % 2 ? &clip : nullptr, nullptr);
        std::uint32_t count = 0;
        walkCircle(cx, cy, r, [&](int x, int y) {
            if (holds(clip, x, y))
                expected.at(x, y) = ++count;
        });
        ASSERT_EQ(expected.difference(image), "") << cx << ',' << cy << " radius " << r;
    }
}

TEST_F(XCVOffscreenShapes, CirclesStoreTheMixersColourOnEveryDepth) {
    for (int depth : cnDepths) {
        TestImage image(m_store, depth, cnWidth, cnHeight);
        Picture expected(image);
        XCPixelMixer store;
        XCVOffPixelMixer mixer;
        mixer.SetNode(&store);
        mixer.SetDstOffscreen(image.get());
        mixer.SetColor(XCComplexColor(cnPale));
        XCVOffscreenAutoLock lock(image.get(), 1);
        image->Circle(255, 255, 20, 7, &mixer, nullptr, nullptr, nullptr);
        const int written = depth == 1 || depth == 8 ? 8 : depth == 16 || depth == 24 ? 24 : 32;
        walkCircle(255, 255, 20, [&](int x, int y) {
            if (holds({0, 0, cnWidth, cnHeight}, x, y))
                expected.at(x, y) = expectedStored(depth, written, written == 8 ? 255 : cnPale, {});
        });
        EXPECT_EQ(expected.difference(image), "") << depth;
    }
}

TEST_F(XCVOffscreenShapes, GiantCirclesDrawTheirVisibleArcAtOnce) {
    // The rightmost column of a circle of radius r is 1 + 2 sqrt(r) pixels high and more.
    const TestImage image = drawn(32, [](XCVOffscreen& target) {
        XCPixelMixer store;
        XCVOffPixelMixer mixer;
        mixer.SetNode(&store);
        mixer.SetDstOffscreen(&target);
        mixer.SetColor(XCComplexColor(cnPale));
        target.Circle(50 - INT_MAX, 100, INT_MAX, 0, &mixer, nullptr, nullptr, nullptr);
        target.Circle(INT_MIN, INT_MIN, INT_MAX, 0, &mixer, nullptr, nullptr, nullptr);
        target.Circle(INT_MAX, INT_MAX, 900, 0, &mixer, nullptr, nullptr, nullptr);
        target.Circle(150, 130, INT_MAX, 0, &mixer, nullptr, nullptr, nullptr);
    });
    TestImage none(m_store, 32, cnWidth, cnHeight);
    Picture expected(none);
    expected.fill(XCRect(50, 0, 51, cnHeight), cnPale);
    EXPECT_EQ(expected.difference(image), "");
}

class XCVOffscreenCircleMask : public XCVOffscreenShapes {
protected:
    /// A circle of radius 5 around (20, 20), of which a mask covers the columns from 20 on.
    void drawUnder(int maskDepth, double maskResolution, int kind, std::uint32_t ink) {
        constexpr int cnOffset = 10;
        m_image.emplace(m_store, 32, 40, 40);
        TestImage maskImage(m_store, maskDepth, 100, 100);
        maskImage->SetResolution(maskResolution);
        const int scale = int(maskResolution);
        for (int y = 0; y < 100; ++y)
            maskImage.fillRow((20 - cnOffset) * scale, 100, y, ink);
        XCVOffPixelMask mask;
        mask.SetMaskInfo(0, {kind, maskImage.get(), 0, cnOffset, cnOffset});
        XCPixelMixer store;
        XCVOffPixelMixer mixer;
        mixer.SetNode(&store);
        mixer.SetDstOffscreen(m_image->get());
        mixer.SetColor(XCComplexColor(cnPale));
        XCVOffscreenAutoLock lock(m_image->get(), 1), maskLock(maskImage.get(), 0);
        (*m_image)->Circle(20, 20, 5, 0, &mixer, &mask, nullptr, nullptr);
    }
    void expectHalf() {
        TestImage none(m_store, 32, 40, 40);
        Picture expected(none);
        walkCircle(20, 20, 5, [&](int x, int y) {
            if (x >= 20)
                expected.at(x, y) = cnPale;
        });
        EXPECT_EQ(expected.difference(*m_image), "");
    }

    std::optional<TestImage> m_image;
};

TEST_F(XCVOffscreenCircleMask, MasksGateThePoints) {
    for (double resolution : {1.0, 2.0}) {
        drawUnder(8, resolution, 0, 1); // any ink is enough for a normal mask
        expectHalf();
        drawUnder(1, resolution, 1, 1);
        expectHalf();
        drawUnder(8, resolution, 1, 255);
        expectHalf();
    }
    drawUnder(8, 1, 1, 100); // too thin for an extension mask
    EXPECT_EQ((*m_image)->IsBlockExist(), 0);
}

TEST_F(XCVOffscreenShapes, CirclesThatCannotBeDrawnDrawNothing) {
    const TestImage image = drawn(32, [](XCVOffscreen& target) {
        Numbering numbering;
        XCVOffPixelMixer mixer;
        mixer.SetNode(&numbering);
        mixer.SetDstOffscreen(&target);
        target.Circle(50, 50, 5, 0, nullptr, nullptr, nullptr, nullptr);
        target.Circle(50, 50, -1, 0, &mixer, nullptr, nullptr, nullptr);
        target.Circle(50, 50, INT_MIN, 0, &mixer, nullptr, nullptr, nullptr);
        for (const tagRECT clip : {tagRECT{40, 40, 40, 60}, tagRECT{60, 60, 40, 40}, tagRECT{-90, -90, 0, 0}})
            target.Circle(50, 50, 5, 0, &mixer, nullptr, &clip, nullptr);
    });
    EXPECT_EQ(image->IsBlockExist(), 0);
}

TEST_F(XCVOffscreenShapes, MasksWithoutAnImageLetEverythingThrough) {
    Numbering numbering;
    const XCRect beyond(-500, -500, 5000, 5000);
    const TestImage image = drawn(32, [&](XCVOffscreen& target) {
        XCVOffPixelMixer mixer;
        XCVOffPixelMask mask;
        mixer.SetNode(&numbering);
        mixer.SetDstOffscreen(&target);
        target.Circle(9, 9, 0, 0, &mixer, &mask, &beyond, nullptr);
        target.Circle(0, 0, 1, 0, &mixer, &mask, &beyond, nullptr);
    });
    EXPECT_EQ(image.value(9, 9), 8u);  // the centre, eight times
    EXPECT_EQ(image.value(0, 1), 10u); // twice; the outside has no pixels to number
    EXPECT_EQ(image.value(1, 0), 12u);
}

// ---- Discs

struct Row {
    int left, right;
};

/// The rows of a disc by the plain formula.
std::vector<Row> discRows(int x, int d) {
    static const std::vector<Row> s_small[] = {
        {{0, 0}}, {{0, 1}, {0, 1}}, {{1, 1}, {0, 2}, {1, 1}}, {{1, 2}, {0, 3}, {0, 3}, {1, 2}}};
    std::vector<Row> rows;
    if (d <= 3) {
        for (const Row& row : s_small[d])
            rows.push_back({x + row.left, x + row.right});
        return rows;
    }
    const double r = d * 0.5, cxf = x + r;
    for (int i = 0; i < d; ++i) {
        const double t = r - 0.5 - i;
        const int left = int(cxf - std::sqrt(r * r - t * t));
        rows.push_back({left, 2 * int(cxf) - left - (d % 2 ? 0 : 1)});
    }
    return rows;
}

std::uint32_t paleIn(int depth) {
    switch (depth) {
    case 1: return 1;
    case 2: return 2;
    case 8: return 255;
    case 16: return stored16(255, 0xD0);
    case 24: return cnPale & 0xFFFFFF;
    default: return cnPale;
    }
}

TEST_F(XCVOffscreenShapes, SmallDiscsInKnownRows) {
    const std::vector<Row> rows[] = {{{0, 0}},
                                     {{0, 1}, {0, 1}},
                                     {{1, 1}, {0, 2}, {1, 1}},
                                     {{1, 2}, {0, 3}, {0, 3}, {1, 2}},
                                     {{0, 3}, {0, 3}, {0, 3}, {0, 3}},
                                     {{1, 3}, {0, 4}, {0, 4}, {0, 4}, {1, 3}},
                                     {},
                                     {},
                                     {{2, 5}, {0, 7}, {0, 7}, {0, 7}, {0, 7}, {0, 7}, {0, 7}, {2, 5}}};
    for (int depth : cnDepths)
        for (int d : {0, 1, 2, 3, 4, 5, 8})
            for (int at : {0, 252}) {
                const TestImage image = drawn(depth, [&](XCVOffscreen& target) {
                    target.CircleFill(at, at, d, cnPale, 0, nullptr, tagPOINT{0, 0}, nullptr, nullptr, 0);
                });
                TestImage none(m_store, depth, cnWidth, cnHeight);
                Picture expected(none);
                for (int i = 0; i < int(rows[d].size()); ++i)
                    expected.fill(XCRect(at + rows[d][std::size_t(i)].left, at + i,
                                         at + rows[d][std::size_t(i)].right + 1, at + i + 1),
                                  paleIn(depth));
                ASSERT_EQ(expected.difference(image), "") << depth << ": diameter " << d << " at " << at;
            }
}

TEST_F(XCVOffscreenShapes, DiscsAreCutByClipMaskAndScreen) {
    std::array<std::uint8_t, 256> screen;
    std::mt19937 random(11);
    for (std::uint8_t& threshold : screen)
        threshold = std::uint8_t(random());
    TestImage mask(m_store, 1, 200, 200);
    scribble(mask, XCRect(0, 0, 200, 200));
    Picture maskPixels(mask);
    constexpr int cnLevel = 128;
    for (int i = 0; i < 240; ++i) {
        const int depth = cnDepths[i % 6], d = i < 60 ? i / 6 : int(random() % 400);
        const int x = int(random() % 400) - 100, y = int(random() % 400) - 100;
        const bool hasMask = random() % 2, hasScreen = random() % 2, isClipped = random() % 2;
        const tagPOINT offset{int(random() % 80) - 40, int(random() % 80) - 40};
        const tagRECT clip = isClipped ? tagRECT{33, 40, 277, 261} : tagRECT{0, 0, cnWidth, cnHeight};
        XCVOffscreenAutoLock maskLock(mask.get(), 0);
        const TestImage image = drawn(depth, [&](XCVOffscreen& target) {
            target.CircleFill(x, y, d, cnPale, 0, hasMask ? mask.get() : nullptr, offset, isClipped ? &clip : nullptr,
                              hasScreen ? screen.data() : nullptr, cnLevel);
        });
        TestImage none(m_store, depth, cnWidth, cnHeight);
        Picture expected(none);
        const std::vector<Row> rows = discRows(x, d);
        for (int row = 0; row < int(rows.size()); ++row)
            for (int px = rows[std::size_t(row)].left; px <= rows[std::size_t(row)].right; ++px) {
                const int py = y + row, mx = px + offset.x, my = py + offset.y;
                if (holds(clip, px, py) && (!hasScreen || cnLevel >= screen[std::size_t(py % 16 * 16 + px % 16)]) &&
                    (!hasMask || (maskPixels.isInside(mx, my) && maskPixels.at(mx, my))))
                    expected.at(px, py) = paleIn(depth);
            }
        ASSERT_EQ(expected.difference(image), "") << depth << ": diameter " << d << " at " << x << ',' << y;
    }
}

TEST_F(XCVOffscreenShapes, DiscsFollowTheMasksResolution) {
    TestImage mask(m_store, 8, 40, 40);
    mask->SetResolution(2);
    for (int y = 20; y < 40; ++y)
        mask.fillRow(0, 40, y, 255);
    XCVOffscreenAutoLock maskLock(mask.get(), 0);
    const TestImage image = drawn(8, [&](XCVOffscreen& target) {
        target.CircleFill(0, 0, 20, cnPale, 0, mask.get(), tagPOINT{0, 0}, nullptr, nullptr, 0);
    });
    EXPECT_EQ(image.value(10, 9), 0u);
    EXPECT_EQ(image.value(10, 10), 255u);
    EXPECT_EQ(image.value(10, 19), 255u);
}

TEST_F(XCVOffscreenShapes, DiscsTakeTheRowFillsModes) {
    TestImage image(m_store, 8, 30, 30);
    image->RectFill(XCRect(0, 0, 30, 30), 0, 0xFF000064); // ink 155
    XCVOffscreenAutoLock lock(image.get(), 1);
    const auto fill = [&](int mode, std::uint32_t alpha) {
        image->CircleFill(5, 5, 10, alpha << 24, mode, nullptr, tagPOINT{0, 0}, nullptr, nullptr, 0);
        return image.value(10, 10);
    };
    EXPECT_EQ(fill(4, 255), 155u);
    EXPECT_EQ(fill(-1, 255), 155u);
    EXPECT_EQ(fill(1, 100), 155u);
    EXPECT_EQ(fill(1, 200), 200u);
    EXPECT_EQ(fill(2, 100), 150u);
    EXPECT_EQ(fill(3, 200), 55u);
    EXPECT_EQ(image.value(4, 10), 155u);
}

TEST_F(XCVOffscreenShapes, DiscsCreateOnlyBlocksThatTheyPaint) {
    TestImage image(m_store, 32, 800, 800), mask(m_store, 1, 800, 800);
    XCVOffscreenAutoLock lock(image.get(), 1), maskLock(mask.get(), 0);
    image->CircleFill(100, 100, 600, cnPale, 0, mask.get(), tagPOINT{0, 0}, nullptr, nullptr, 0);
    image->CircleFill(100, 100, -3, cnPale, 0, nullptr, tagPOINT{0, 0}, nullptr, nullptr, 0);
    image->CircleFill(100, 100, INT_MIN, cnPale, 0, nullptr, tagPOINT{0, 0}, nullptr, nullptr, 0);
    image->CircleFill(100, 900, 50, cnPale, 0, nullptr, tagPOINT{0, 0}, nullptr, nullptr, 0);
    const tagRECT nothing{300, 300, 300, 400};
    image->CircleFill(100, 100, 600, cnPale, 0, nullptr, tagPOINT{0, 0}, &nothing, nullptr, 0);
    EXPECT_EQ(image->IsBlockExist(), 0);
    image->CircleFill(300, 300, 100, cnPale, 0, nullptr, tagPOINT{0, 0}, nullptr, nullptr, 0);
    for (int block = 0; block < 16; ++block)
        EXPECT_EQ(image->GetBlockExist(block), block == 5) << block;
}

TEST_F(XCVOffscreenShapes, GiantDiscsFillTheirVisiblePart) {
    constexpr tagPOINT cnFar{INT_MAX, INT_MAX};
    TestImage mask(m_store, 1, 20, 20);
    XCVOffscreenAutoLock maskLock(mask.get(), 0);
    const TestImage image = drawn(8, [&](XCVOffscreen& target) {
        target.CircleFill(-1000000000, -1000000000, INT_MAX, 0xFF000000, 0, nullptr, cnFar, nullptr, nullptr, 0);
        target.CircleFill(-1000, -1000, 5000, 0xFF000000, 3, mask.get(), cnFar, nullptr, nullptr, 0);
        target.CircleFill(INT_MAX, INT_MAX, INT_MAX, 0xFF000000, 3, nullptr, cnFar, nullptr, nullptr, 0);
        target.CircleFill(INT_MIN, INT_MIN, 3, 0xFF000000, 3, nullptr, cnFar, nullptr, nullptr, 0);
    });
    TestImage none(m_store, 8, cnWidth, cnHeight);
    Picture expected(none);
    expected.fill(XCRect(0, 0, cnWidth, cnHeight), 255);
    EXPECT_EQ(expected.difference(image), "");
}

// ---- Ellipses

/// The walk over one octant of the circle along the longer axis, step by step; fill(left, right, row), inclusive.
void walkEllipse(int x1, int y1, int x2, int y2, const std::function<void(int, int, int)>& fill) {
    const int a = (x2 - x1) / 2, b = (y2 - y1) / 2, cx = x1 + a, cy = y1 + b;
    if (a == 0 && b == 0)
        return;
    const auto pair = [&](int half, int distance) {
        fill(cx - half, cx + half, cy - distance);
        fill(cx - half, cx + half, cy + distance);
    };
    int x = 0, y = std::max(a, b), e = y;
    do {
        if (a <= b) {
            pair(y * a / b, x);
            pair(x * a / b, y);
        } else {
            pair(y, x * b / a);
            pair(x, y * b / a);
        }
        e += 1 - 2 * x;
        if (e < 0) {
            e += 2 * y - 2;
            --y;
        }
        ++x;
    } while (y >= x);
}

TEST_F(XCVOffscreenShapes, EllipsesFillTheRowsOfTheWalk) {
    std::mt19937 random(21);
    for (int i = 0; i < 400; ++i) {
        const int depth = cnDepths[i % 6];
        const int limit = i < 200 ? 24 : 500;
        const int x1 = int(random() % 300) - 40, y1 = int(random() % 300) - 40;
        const int x2 = x1 + int(random() % unsigned(limit)), y2 = y1 + int(random() % unsigned(limit));
        const tagRECT clip = i % 2 ? tagRECT{20, 30, 290, 260} : tagRECT{0, 0, cnWidth, cnHeight};
        TestImage image(m_store, depth, cnWidth, cnHeight);
        Picture expected(image);
        image->ArcFill(x1, y1, x2, y2, cnPale, i % 2 ? &clip : nullptr);
        if (x1 < cnWidth && x2 > 0 && y1 < cnHeight && y2 > 0)
            walkEllipse(x1, y1, x2, y2, [&](int left, int right, int row) {
                if (row >= clip.top && row < clip.bottom)
                    expected.fill(XCRect(std::max(left, clip.left), row, std::min(right + 1, clip.right), row + 1),
                                  rowFilled(depth, cnPale));
            });
        ASSERT_EQ(expected.difference(image), "") << depth << ": " << x1 << ',' << y1 << " to " << x2 << ',' << y2;
    }
}

TEST_F(XCVOffscreenShapes, EllipsesInKnownRows) {
    TestImage image(m_store, 32, 20, 20);
    Picture expected(image);
    image->ArcFill(0, 0, 10, 10, cnPale, nullptr);
    expected.fill(XCRect(2, 0, 9, 11), cnPale);
    expected.fill(XCRect(1, 1, 10, 10), cnPale);
    expected.fill(XCRect(0, 2, 11, 9), cnPale);
    EXPECT_EQ(expected.difference(image), "");
    image->ArcFill(15, 2, 15, 8, cnPale, nullptr); // as thin as a line
    expected.fill(XCRect(15, 2, 16, 9), cnPale);
    image->ArcFill(2, 15, 9, 16, cnPale, nullptr); // odd: the last column stays free
    expected.fill(XCRect(2, 15, 9, 16), cnPale);
    EXPECT_EQ(expected.difference(image), "");
}

TEST_F(XCVOffscreenShapes, EllipsesThatCannotBeDrawnDrawNothing) {
    TestImage image(m_store, 32, cnWidth, cnHeight);
    const tagRECT outside{cnWidth, 0, cnWidth + 50, 50};
    image->ArcFill(-50, -50, -1, -1, cnPale, nullptr);
    image->ArcFill(cnWidth, 0, cnWidth + 90, 90, cnPale, nullptr);
    image->ArcFill(7, 7, 7, 7, cnPale, nullptr);
    image->ArcFill(7, 7, 8, 8, cnPale, nullptr);
    image->ArcFill(90, 10, 10, 90, cnPale, nullptr);
    image->ArcFill(INT_MAX, INT_MAX, INT_MIN, INT_MIN, cnPale, nullptr);
    image->ArcFill(0, 0, 90, 90, cnPale, &outside);
    EXPECT_EQ(image->IsBlockExist(), 0);
    EXPECT_EQ(image->GetLockCount(), 0);
}

TEST_F(XCVOffscreenShapes, GiantEllipsesFillTheirVisibleRows) {
    TestImage image(m_store, 8, cnWidth, cnHeight);
    Picture expected(image);
    image->ArcFill(INT_MIN, INT_MIN, INT_MAX, INT_MAX, 0xFF000000, nullptr);
    expected.fill(XCRect(0, 0, cnWidth, cnHeight), rowFilled(8, 0xFF000000));
    EXPECT_EQ(expected.difference(image), "");
    // The bottom row is 2 sqrt(r) wide and more.
    TestImage bottom(m_store, 8, cnWidth, cnHeight);
    Picture expectedBottom(bottom);
    bottom->ArcFill(-1000000000, -2000000000 + 10, 1000000000, 10, 0xFF000000, nullptr);
    expectedBottom.fill(XCRect(0, 0, cnWidth, 11), rowFilled(8, 0xFF000000));
    EXPECT_EQ(expectedBottom.difference(bottom), "");
}

TEST_F(XCVOffscreenShapes, EllipsesGiveTheCallersLockBack) {
    TestImage image(m_store, 32, 600, 600);
    XCVOffscreenAutoLock lock(image.get(), 5, 6, 0);
    image->ArcFill(300, 300, 400, 350, cnPale, nullptr);
    EXPECT_EQ(image->GetCursorPosX(), 5);
    EXPECT_EQ(image->GetCursorPosY(), 6);
    EXPECT_EQ(image->GetEditMode(), 0);
    EXPECT_EQ(image->GetLockCount(), 1);
    for (int block = 0; block < 9; ++block)
        EXPECT_EQ(image->GetBlockExist(block), block == 4) << block;
}

} // namespace
