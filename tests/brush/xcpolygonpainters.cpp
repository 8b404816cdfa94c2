// The polygon's other ways to the image, against the fast mixer's pixels.

#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcpixelmixer.h"
#include "ovwcmn/xcpolygon.h"
#include "ovwcmn/xcvoffpixelmixer.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
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
