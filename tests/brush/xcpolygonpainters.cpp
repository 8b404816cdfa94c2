// The polygon's other ways to the image, against the fast mixer's pixels.

#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcpixelmixer.h"
#include "ovwcmn/xcpolygon.h"
#include "ovwcmn/xcvoffpixelmixer.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <span>
#include <tuple>
#include <utility>

namespace {

using namespace ovw::test;

constexpr int cnSize = 300;
constexpr std::uint32_t cnColour = 0xFF332211;

/// A figure across four blocks, drawn in every way that XCPolygon has.
using Figure = std::function<int(XCPolygon& polygon, XCVOffscreen* image, tagRECT* changed)>;

XCPolyVertex star() {
    XCPolyVertex vertices;
    for (auto [x, y] : {std::pair{250.3, 230.1}, {275.9, 290.7}, {228.2, 251.4}, {281.1, 248.6}, {233.7, 288.2}})
        vertices.Add(x, y);
    return vertices;
}

const struct {
    const char* name;
    Figure draw;
} cnFigures[] = {
    {"triangle",
     [](XCPolygon& p, XCVOffscreen* image, tagRECT* changed) {
         TTrianglePos triangle{{{240.2, 244}, {280, 250.6}, {250, 279.9}}};
         return p.DrawTriangle(changed, image, &triangle);
     }},
    {"even-odd",
     [](XCPolygon& p, XCVOffscreen* image, tagRECT* changed) {
         XCPolyVertex vertices = star();
         return p.DrawPolygon(changed, image, &vertices, nullptr);
     }},
    {"non-zero",
     [](XCPolygon& p, XCVOffscreen* image, tagRECT* changed) {
         XCPolyVertex vertices = star();
         tagRECT clip{230, 240, 270, 280};
         return p.DrawPolygonNonZero(changed, image, &vertices, &clip);
     }},
    {"anti-aliased",
     [](XCPolygon& p, XCVOffscreen* image, tagRECT* changed) {
         XCPolyVertex vertices = star();
         return p.DrawPolygonAA(changed, image, &vertices, nullptr);
     }},
    {"rectangle", [](XCPolygon& p, XCVOffscreen* image,
                     tagRECT* changed) { return p.DrawRect(changed, image, 256, 255.5, 40, 20, 0.5, 1, nullptr); }},
    {"ellipse", [](XCPolygon& p, XCVOffscreen* image,
                   tagRECT* changed) { return p.DrawEllipse(changed, image, 256, 255.5, 40, 20, 0.5, 0, nullptr); }},
};

class PolygonPainters : public testing::Test {
protected:
    void expectEqual(const TestImage& expected, const TestImage& drawn, int tolerance, const char* name) {
        for (int y = 220; y < cnSize; ++y)
            for (int x = 220; x < cnSize; ++x) {
                const std::uint32_t a = expected.value(x, y);
                const std::uint32_t b = drawn.value(x, y);
                ASSERT_LE(std::abs(int(a >> 24) - int(b >> 24)), tolerance) << name << ' ' << x << ' ' << y;
                if (a >> 24 && b >> 24) {
                    ASSERT_EQ(a & 0xFFFFFF, b & 0xFFFFFF) << name << ' ' << x << ' ' << y;
                }
            }
    }

    void drawFast(TestImage& image, const Figure& draw, tagRECT* changed) {
        XCFastPixelMixer mixer;
        mixer.SetDstOffscreen(image.get());
        mixer.SetDrawCompositioin(XCFastPixelMixer::Normal);
        mixer.SetColor(cnColour);
        XCPolygon polygon(&mixer);
        XCVOffscreenAutoLock lock(image.get(), 1);
        EXPECT_EQ(draw(polygon, image.get(), changed), 1);
    }

    TestStore m_store;
};

} // namespace

TEST_F(PolygonPainters, DrawTheSameFigures) {
    for (const auto& figure : cnFigures) {
        TestImage fast(m_store, 32, cnSize, cnSize);
        TestImage mixed(m_store, 32, cnSize, cnSize);
        TestImage coloured(m_store, 32, cnSize, cnSize);
        tagRECT bounds[3]{};
        drawFast(fast, figure.draw, &bounds[0]);
        XCPixelMixerBlend blend;
        XCVOffPixelMixer mixer;
        mixer.SetDstOffscreen(mixed.get());
        mixer.SetNode(&blend);
        mixer.SetColor(XCComplexColor(cnColour));
        XCPolygon byMixer(&mixer, nullptr);
        XCPolygon byColour(cnColour, nullptr);
        XCVOffscreenAutoLock mixedLock(mixed.get(), 1);
        XCVOffscreenAutoLock colouredLock(coloured.get(), 1);
        EXPECT_EQ(figure.draw(byMixer, mixed.get(), &bounds[1]), 1);
        EXPECT_EQ(figure.draw(byColour, coloured.get(), &bounds[2]), 1);
        for (const tagRECT& other : {bounds[1], bounds[2]})
            EXPECT_TRUE(XCRect(bounds[0]) == XCRect(other)) << figure.name;
        expectEqual(fast, mixed, 1, figure.name); // 1.15 coverages against bytes
        expectEqual(fast, coloured, 1, figure.name);
    }
}

TEST_F(PolygonPainters, KeepToTheMask) {
    TestImage mask(m_store, 1, cnSize, cnSize);
    for (int y = 0; y < cnSize; ++y)
        mask.fillRow(0, 200, y, 1);
    XCVOffPixelMask selection;
    selection.SetMaskInfo(0, {1, mask.get(), 0, 55, 0}); // free where x < 255
    XCVOffscreenAutoLock maskLock(mask.get(), 0);
    for (const auto& figure : cnFigures) {
        TestImage image(m_store, 32, cnSize, cnSize);
        TestImage fast(m_store, 32, cnSize, cnSize);
        drawFast(fast, figure.draw, nullptr);
        XCPolygon polygon(cnColour, &selection);
        XCVOffscreenAutoLock lock(image.get(), 1);
        figure.draw(polygon, image.get(), nullptr);
        for (int x : {250, 254, 255, 256, 262}) {
            const std::uint32_t alpha = image.value(x, 258) >> 24;
            EXPECT_NEAR(int(alpha), x < 255 ? int(fast.value(x, 258) >> 24) : 0, 1) << figure.name << ' ' << x;
        }
    }
}

TEST_F(PolygonPainters, PutTheClonePointInTheMiddle) {
    TestImage image(m_store, 32, 50, 50);
    TestImage source(m_store, 32, 50, 50);
    source.setValue(7, 8, 0xFF445566);
    XCPixelMixer store;
    XCVOffPixelMixer mixer;
    mixer.SetDstOffscreen(image.get());
    mixer.SetNode(&store);
    mixer.SetCloneOffscreen(source.get(), {7, 8});
    XCPolygon polygon(&mixer, nullptr);
    XCVOffscreenAutoLock lock(image.get(), 1);
    XCVOffscreenAutoLock sourceLock(source.get(), 0);
    EXPECT_EQ(polygon.DrawRect(nullptr, image.get(), 24.5, 30.5, 9, 7, 0, 0, nullptr), 1); // 20 to 29, 27 to 34
    EXPECT_EQ(image.value(20 + 5, 27 + 4), 0xFF445566u);
}

TEST_F(PolygonPainters, WithoutAnyWayNothingIsDrawn) {
    TestImage image(m_store, 32, 50, 50);
    XCVOffscreenAutoLock lock(image.get(), 1);
    XCPolygon polygon(static_cast<XCVOffPixelMixer*>(nullptr), nullptr);
    XCPolygon coloured(cnColour, nullptr);
    EXPECT_EQ(polygon.DrawRect(nullptr, image.get(), 20, 20, 9, 9, 0, 1, nullptr), 0);
    EXPECT_EQ(coloured.DrawRect(nullptr, nullptr, 20, 20, 9, 9, 0, 1, nullptr), 0);
    EXPECT_FALSE(image->IsBlockExist());
}

TEST_F(PolygonPainters, PlainFillsPaintTheSameFigureInBothForms) {
    for (int depth : {1, 8, 32}) {
        TestImage expected(m_store, depth, cnSize, cnSize);
        TestImage listed(m_store, depth, cnSize, cnSize);
        TestImage plain(m_store, depth, cnSize, cnSize);
        XCPolygon polygon(cnColour, nullptr);
        XCPolyVertex vertices = star();
        const std::span<const tagPOINTD> corners = vertices.Vertices();
        tagRECT clip{230, 240, 270, 280}, wanted{}, changed{};
        XCVOffscreenAutoLock expectedLock(expected.get(), 1), listedLock(listed.get(), 1), plainLock(plain.get(), 1);
        EXPECT_EQ(polygon.DrawPolygon(&wanted, expected.get(), &vertices, &clip), 1);
        EXPECT_EQ(XCPolygon::FillPolygon(&changed, listed.get(), &vertices, cnColour, 0, &clip, 0, 255), 1);
        EXPECT_EQ(XCPolygon::FillPolygon(plain.get(), corners.data(), 5, &clip, cnColour, 0, 255), 1);
        EXPECT_TRUE(XCRect(wanted) == XCRect(changed));
        for (int y = 220; y < cnSize; ++y)
            for (int x = 220; x < cnSize; ++x) {
                ASSERT_EQ(listed.value(x, y), expected.value(x, y)) << x << ' ' << y;
                ASSERT_EQ(plain.value(x, y), expected.value(x, y)) << x << ' ' << y;
            }
    }
}

TEST_F(PolygonPainters, AnAlphaBelow255DithersPlainFills) {
    constexpr int cnBlend = 2;
    TestImage image(m_store, 8, cnSize, cnSize);
    XCVOffscreenAutoLock lock(image.get(), 1);
    const tagPOINTD square[] = {{32, 32}, {95, 32}, {95, 96}, {32, 96}};
    EXPECT_EQ(XCPolygon::FillPolygon(image.get(), square, 4, nullptr, 0x80000000, cnBlend, 99), 1);
    const std::uint8_t* const thresholds = XCVOffscreen::GetDitherTable256();
    for (int y = 32; y < 96; ++y)
        for (int x = 32; x < 96; ++x)
            ASSERT_EQ(image.value(x, y), thresholds[y % 16 * 16 + x % 16] <= 99 ? 64u : 0u) << x << ' ' << y;
}

TEST_F(PolygonPainters, PlainRowsAreCutToTheImageAndFollowTheMask) {
    constexpr int cnErase = 3;
    TestImage image(m_store, 8, 40, 10);
    TestImage mask(m_store, 1, 40, 10);
    mask.fillRow(10, 13, 4, 1);
    XCVOffscreenAutoLock lock(image.get(), 1), maskLock(mask.get(), 0, 4, 0);
    EXPECT_EQ(XCPolygon::FillLineRowForPolygon(image.get(), 70, -5, 3, cnColour, 0, nullptr, 0, 255), 1);
    EXPECT_EQ(XCPolygon::FillLineRowForPolygon(image.get(), 0, 39, 3, cnColour, cnErase, mask.get(), -2, 255), 1);
    for (int x = 0; x < 40; ++x)
        EXPECT_EQ(image.value(x, 3), x >= 12 && x < 15 ? 0u : 255u) << x;
    for (auto [x0, x1, y] : {std::tuple{0, 39, -1}, {0, 39, 10}, {-9, -1, 5}, {40, 90, 5}})
        EXPECT_EQ(XCPolygon::FillLineRowForPolygon(image.get(), x0, x1, y, cnColour, 0, nullptr, 0, 255), 0);
    EXPECT_EQ(XCPolygon::FillLineRowForPolygon(nullptr, 0, 9, 5, cnColour, 0, nullptr, 0, 255), 0);
}
