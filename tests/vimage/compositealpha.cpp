#include "ovwcmn/xcpixelmixer.h"
#include "ovwcmn/xcvoffpixelmixer.h"
#include "ovwcmn/xcvoffscreen.h"

#include "picture.h"
#include "pixelreference.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>

namespace {

using namespace ovw::test;

constexpr std::uint32_t cnPaint = 0xE0336699;

/// A rule in which every bit of the pixel, the colour and the weight counts.
constexpr std::uint32_t stirred(std::uint32_t pixel, std::uint32_t colour, int weight) {
    return (pixel * 2654435761u) ^ (colour + std::uint32_t(weight) * 40503u);
}

class Stirring : public XCPixelMixer {
public:
    void Do8Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t weight) override {
        *p = std::uint8_t(stirred(*p, value, weight));
    }
    void Do24Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) override {
        *p = stirred(*p, colour, weight);
    }
    void Do32Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) override {
        *p = stirred(*p, colour, weight);
    }
};

/// What is stored where base meets the paint.
std::uint32_t stirredIn(int depth, std::uint32_t base, int weight) {
    switch (depth) {
    case 1:
    case 8: return expectedStored(depth, 8, stirred(base >> 24, cnPaint >> 24, weight) & 0xFF, {});
    case 16:
    case 24: return expectedStored(depth, 24, stirred(base, cnPaint, weight), {});
    default: return expectedStored(depth, 32, stirred(base, cnPaint, weight), {});
    }
}

std::uint32_t colourOf(const TestImage& image, std::uint32_t stored) {
    const std::uint32_t ink[4] = {0, 0xFF000000, 0xFFFFFFFF, 0xFF000000};
    return expectedReadings(image.depth(), stored, {}, ink).bit32;
}

class XCVOffscreenCompositAlpha : public testing::Test {
protected:
    XCVOffscreenCompositAlpha() { m_mixer.SetNode(&m_stirring); }

    void paint(TestImage& destination, int dx, int dy, int w, int h, TestImage& source, TestImage& alpha, int sx,
               int sy) {
        m_mixer.SetDstOffscreen(destination.get());
        m_mixer.SetColor(XCComplexColor(cnPaint));
        m_mixer.SetAlpha(cnAlpha);
        destination->CompositAlpha(dx, dy, w, h, source.get(), alpha.get(), sx, sy, &m_mixer);
    }

    /// The same, pixel by pixel, in what the destination holds.
    static void expectPainted(Picture& destination, int depth, int dx, int dy, int w, int h, const TestImage& source,
                              const TestImage& alpha, int sx, int sy) {
        Picture pixels(source), inks(alpha);
        for (int j = 0; j < h; ++j)
            for (int i = 0; i < w; ++i) {
                const int x = sx + i, y = sy + j;
                if (!inks.isInside(x, y) || !destination.isInside(dx + i, dy + j) || inks.at(x, y) == 0)
                    continue;
                const std::uint32_t base = source->GetBlockExist(x, y) ? colourOf(source, pixels.at(x, y)) : 0x00FFFFFF;
                destination.at(dx + i, dy + j) = stirredIn(depth, base, cnAlpha * int(inks.at(x, y)) / 255);
            }
    }

    static constexpr int cnAlpha = 201;
    TestStore m_store{64u << 20};
    Stirring m_stirring;
    XCVOffPixelMixer m_mixer;
};

TEST_F(XCVOffscreenCompositAlpha, MixesEverySourceIntoEveryDestination) {
    for (int sourceDepth : cnDepths) {
        TestImage source(m_store, sourceDepth, 520, 300), alpha(m_store, 8, 520, 300);
        scribble(source, XCRect(0, 0, 256, 300)); // no blocks to the right
        scribble(alpha, XCRect(100, 0, 512, 280), 2);
        alpha.fillRow(150, 170, 33, 0);
        for (int depth : cnDepths) {
            TestImage destination(m_store, depth, 300, 280);
            scribble(destination, XCRect(0, 0, 120, 280), 3);
            Picture expected(destination);
            expectPainted(expected, depth, 7, 9, 250, 260, source, alpha, 130, 20);
            paint(destination, 7, 9, 250, 260, source, alpha, 130, 20);
            ASSERT_EQ(expected.difference(destination), "") << sourceDepth << " to " << depth;
        }
    }
}

TEST_F(XCVOffscreenCompositAlpha, RectanglesAreCutByBothImages) {
    TestImage source(m_store, 32, 300, 270), alpha(m_store, 8, 300, 270);
    scribble(source, XCRect(0, 0, 300, 270));
    scribble(alpha, XCRect(0, 0, 300, 270), 2);
    struct {
        int dx, dy, w, h, sx, sy;
    } cases[] = {
        {-10, 0, 100, 20, 40, 5},     {0, -300, 100, 400, 0, 0},  {250, 250, 100, 100, 3, 3},  {5, 6, 60, 70, -20, -30},
        {0, 0, 900, 900, -500, 0},    {0, 0, 900, 900, 290, 260}, {5, 5, 0, 9, 5, 5},          {5, 5, -9, 9, 5, 5},
        {-10, 5, 10, 9, 5, 5},        {280, 0, 9, 9, 0, 0},       {-30, -30, 31, 31, -5, -28}, {260, 3, 9, 9, 300, 0},
        {-100, -100, 400, 400, 5, 5},
    };
    for (const auto& c : cases) {
        TestImage destination(m_store, 32, 280, 260);
        Picture expected(destination);
        expectPainted(expected, 32, c.dx, c.dy, c.w, c.h, source, alpha, c.sx, c.sy);
        paint(destination, c.dx, c.dy, c.w, c.h, source, alpha, c.sx, c.sy);
        ASSERT_EQ(expected.difference(destination), "") << c.dx << ',' << c.dy << ' ' << c.w << ' ' << c.sx;
    }
}

TEST_F(XCVOffscreenCompositAlpha, ExtremeRectanglesAreCut) {
    TestImage source(m_store, 32, 30, 30), alpha(m_store, 8, 30, 30), destination(m_store, 32, 30, 30);
    scribble(source, XCRect(0, 0, 30, 30));
    scribble(alpha, XCRect(0, 0, 30, 30), 2);
    for (int to : {INT_MIN, INT_MAX, INT_MIN + 9})
        for (int length : {INT_MIN, INT_MAX})
            for (int from : {INT_MIN, 0, INT_MAX})
                paint(destination, to, to, length, length, source, alpha, from, from);
    EXPECT_EQ(destination->IsBlockExist(), 0);
    Picture expected(destination);
    expectPainted(expected, 32, 0, 0, 30, 30, source, alpha, 0, 0);
    paint(destination, -5, -5, INT_MAX, INT_MAX, source, alpha, -5, -5);
    EXPECT_EQ(expected.difference(destination), "");
}

TEST_F(XCVOffscreenCompositAlpha, ImagesThatDoNotMatchPaintNothing) {
    TestImage destination(m_store, 32, 50, 50), source(m_store, 32, 50, 50), alpha(m_store, 8, 50, 50);
    TestImage wide(m_store, 8, 51, 50), high(m_store, 8, 50, 51), fine(m_store, 8, 50, 50), deep(m_store, 32, 50, 50);
    fine->SetResolution(2);
    for (TestImage* image : {&source, &alpha, &wide, &high, &fine, &deep})
        for (int y = 0; y < 50; ++y)
            image->fillRow(0, 50, y, 255);
    for (TestImage* unfit : {&wide, &high, &fine, &deep})
        paint(destination, 0, 0, 50, 50, source, *unfit, 0, 0);
    m_mixer.SetDstOffscreen(destination.get());
    destination->CompositAlpha(0, 0, 50, 50, nullptr, alpha.get(), 0, 0, &m_mixer);
    destination->CompositAlpha(0, 0, 50, 50, source.get(), nullptr, 0, 0, &m_mixer);
    destination->CompositAlpha(0, 0, 50, 50, source.get(), alpha.get(), 0, 0, nullptr);
    EXPECT_EQ(destination->IsBlockExist(), 0);
    paint(destination, 0, 0, 50, 50, source, alpha, 0, 0);
    EXPECT_EQ(destination->IsBlockExist(), 1);
}

TEST_F(XCVOffscreenCompositAlpha, PixelsWithoutInkCreateNoBlocks) {
    TestImage destination(m_store, 32, 800, 300), source(m_store, 32, 800, 300), alpha(m_store, 8, 800, 300);
    for (int x : {0, 256, 512})
        alpha.setValue(x, 0, 0);
    alpha.setValue(300, 10, 255);
    paint(destination, 0, 0, 800, 300, source, alpha, 0, 0);
    for (int block = 0; block < 8; ++block)
        EXPECT_EQ(destination->GetBlockExist(block), block == 1) << block;
    EXPECT_EQ(source->IsBlockExist(), 0);
    EXPECT_EQ(destination.value(300, 10), stirred(0x00FFFFFF, cnPaint, cnAlpha));
}

TEST_F(XCVOffscreenCompositAlpha, BlendsOverTheSourceByInk) {
    TestImage destination(m_store, 32, 4, 1), source(m_store, 32, 4, 1), alpha(m_store, 8, 4, 1);
    XCPixelMixerWeightCopy copy;
    m_mixer.SetNode(&copy);
    source.fillRow(0, 4, 0, 0xFF000000);
    alpha.setValue(0, 0, 255);
    alpha.setValue(1, 0, 1); // weight 201 / 255, truncated to 0
    m_mixer.SetDstOffscreen(destination.get());
    m_mixer.SetColor(XCComplexColor(0xFFFFFFFFu));
    m_mixer.SetAlpha(255);
    destination->CompositAlpha(0, 0, 4, 1, source.get(), alpha.get(), 0, 0, &m_mixer);
    EXPECT_EQ(destination.value(0, 0), 0xFFFFFFFFu);
    m_mixer.SetAlpha(201);
    destination->CompositAlpha(0, 0, 4, 1, source.get(), alpha.get(), 0, 0, &m_mixer);
    EXPECT_EQ(destination.value(0, 0), 0xFFC9C9C9u);
    EXPECT_EQ(destination.value(1, 0), 0xFF000000u);
    EXPECT_EQ(destination.value(2, 0), 0x00FFFFFFu);
}

TEST_F(XCVOffscreenCompositAlpha, WideColoursAreNarrowedForTheCallOnly) {
    TestImage destination(m_store, 32, 4, 1), source(m_store, 32, 4, 1), alpha(m_store, 8, 4, 1);
    alpha.fillRow(0, 4, 0, 255);
    XCComplexColor wide;
    wide.SetColor64(0xE0FF, 0x9912, 0x66FF, 0x3300);
    m_mixer.SetDstOffscreen(destination.get());
    m_mixer.SetColor(wide);
    destination->CompositAlpha(0, 0, 4, 1, source.get(), alpha.get(), 0, 0, &m_mixer);
    EXPECT_EQ(destination.value(3, 0), stirred(0x00FFFFFF, cnPaint, 255));
    EXPECT_EQ(m_mixer.GetColor().GetMode(), 1);
    EXPECT_EQ(m_mixer.GetColor().GetR(), 0x9912);
}

TEST_F(XCVOffscreenCompositAlpha, OneImageMayTakeSeveralParts) {
    TestImage image(m_store, 32, 600, 300), alpha(m_store, 8, 600, 300);
    scribble(image, XCRect(0, 0, 256, 300));
    scribble(alpha, XCRect(0, 0, 600, 300), 2);
    Picture expected(image);
    expectPainted(expected, 32, 0, 0, 600, 300, image, alpha, 0, 0);
    paint(image, 0, 0, 600, 300, image, alpha, 0, 0);
    EXPECT_EQ(expected.difference(image), "");

    Picture expectedInk(alpha);
    expectPainted(expectedInk, 8, 0, 0, 600, 300, alpha, alpha, 0, 0);
    paint(alpha, 0, 0, 600, 300, alpha, alpha, 0, 0);
    EXPECT_EQ(expectedInk.difference(alpha), "");
}

TEST_F(XCVOffscreenCompositAlpha, TheCallersLocksComeBack) {
    TestImage destination(m_store, 32, 300, 300), source(m_store, 32, 300, 300), alpha(m_store, 8, 300, 300);
    for (TestImage* image : {&source, &alpha})
        scribble(*image, XCRect(0, 0, 300, 300));
    XCVOffscreenAutoLock lock(destination.get(), 5, 6, 0), sourceLock(source.get(), 7, 8, 0);
    paint(destination, 0, 0, 300, 300, source, alpha, 0, 0);
    EXPECT_EQ(destination->GetCursorPosX(), 5);
    EXPECT_EQ(destination->GetEditMode(), 0);
    EXPECT_EQ(destination->GetLockCount(), 1);
    EXPECT_EQ(source->GetCursorPosY(), 8);
    EXPECT_EQ(alpha->GetLockCount(), 0);
}

} // namespace
