// Image tips: stamps, ribbons, thumbnails and splatters.

#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcpattern.h"
#include "ovwcmn/xcpatterndraw.h"
#include "ovwcmn/xcpatterndrawparam.h"
#include "ovwcmn/xcsimpleimage.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

namespace {

using ovw::test::TestImage;
using ovw::test::TestStore;

/// The process-wide store, for images that the library makes.
class XCImagePatternTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        _CREATEVMPARAM param{0, nullptr, 1, 20};
        xcCreateVirtualMemory(&param);
    }
    static void TearDownTestSuite() { xcDestroyVirtualMemory(); }

    /// A tip of the given depth, whose pixel (x, y) is valueAt(x, y).
    template <class ValueAt>
    void importTip(XCImagePattern& tip, int depth, int width, int height, ValueAt valueAt) {
        TestImage image(m_store, depth, width, height);
        for (int y = 0; y < height; y++)
            for (int x = 0; x < width; x++)
                image.setValue(x, y, valueAt(x, y));
        tip.ImportPatternOffscreen(image.get());
    }

    TestStore m_store;
};

XCFastPixelMixer mixerFor(XCVOffscreen* image) {
    XCFastPixelMixer mixer;
    mixer.SetDstOffscreen(image);
    mixer.SetColor(0xFF000000);
    mixer.SetDrawCompositioin(XCFastPixelMixer::Normal);
    return mixer;
}

TEST_F(XCImagePatternTest, ReproducesItsImageAtScaleOne) {
    const auto valueAt = [](int x, int y) { return static_cast<std::uint32_t>((x * 37 + y * 91) % 255 + 1); };
    for (int width = 1; width <= 6; width++)
        for (int height = 1; height <= 6; height++) {
            XCImagePattern tip;
            importTip(tip, 8, width, height, valueAt);
            TestImage target(m_store, 8, 300, 40);
            XCFastPixelMixer mixer = mixerFor(target.get());
            EXPECT_EQ(tip.Draw(nullptr, target.get(), &mixer, {256, 20}, static_cast<float>(std::max(width, height)),
                               1.0f, 0),
                      1);
            const int left = 257 - (width + 1) / 2;
            const int top = 21 - (height + 1) / 2;
            for (int y = -1; y <= height; y++)
                for (int x = -1; x <= width; x++) {
                    const bool isInside = x >= 0 && x < width && y >= 0 && y < height;
                    // An odd side begins on a half pixel, which belongs to the pixel that holds more of it.
                    EXPECT_EQ(target.value(left + x, top + y), isInside ? valueAt(x, y) : 0u)
                        << width << 'x' << height << ": " << x << ", " << y;
                }
        }
}

TEST_F(XCImagePatternTest, ReportsItsBoundsAndSkipsBadInput) {
    XCImagePattern tip;
    TestImage target(m_store, 8, 100, 100);
    XCFastPixelMixer mixer = mixerFor(target.get());
    XCRect changed(1, 2, 3, 4);
    EXPECT_EQ(tip.Draw(&changed, target.get(), &mixer, {50, 50}, 10, 1, 1), 0); // empty
    importTip(tip, 8, 4, 4, [](int, int) { return 255u; });
    constexpr float cnNaN = std::numeric_limits<float>::quiet_NaN();
    constexpr float cnInfinite = std::numeric_limits<float>::infinity();
    EXPECT_EQ(tip.Draw(&changed, target.get(), &mixer, {50, 50}, cnNaN, 1, 1), 0);
    EXPECT_EQ(tip.Draw(&changed, target.get(), &mixer, {50, 50}, cnInfinite, 1, 1), 0);
    EXPECT_EQ(tip.Draw(&changed, target.get(), &mixer, {cnNaN, 50}, 10, 1, 1), 0);
    EXPECT_EQ(tip.Draw(&changed, target.get(), &mixer, {500, 50}, 10, 1, 1), 0);
    EXPECT_EQ(changed, XCRect(1, 2, 3, 4));
    tip.SetParameter(1, 1, cnNaN);
    EXPECT_EQ(tip.Draw(&changed, target.get(), &mixer, {50, 50}, 10, 1, 1), 0);
    tip.SetParameter(1, 1, 0);
    EXPECT_EQ(tip.Draw(&changed, target.get(), &mixer, {0, 50}, 10, 1, 1), 1);
    EXPECT_EQ(changed, XCRect(0, 44, 7, 57));
} // namespace

TEST_F(XCImagePatternTest, ThumbnailsKeepTheMeanAndTheAspect) {
    XCImagePattern tip;
    importTip(tip, 8, 300, 100, [](int x, int) { return x < 150 ? 200u : 0u; });
    const std::unique_ptr<XCVOffscreen> thumbnail(tip.CreateThumbnail());
    ASSERT_EQ(thumbnail->GetWidth(), 64);
    ASSERT_EQ(thumbnail->GetHeight(), 21);
    EXPECT_EQ(thumbnail->GetDepth(), 8);
    const XCVOffscreenAutoLock lock(thumbnail.get(), 0);
    thumbnail->MoveCursor(31, 10);
    EXPECT_EQ(thumbnail->Get8BitColor(), 200);
    thumbnail->MoveCursor(32, 10);
    EXPECT_EQ(thumbnail->Get8BitColor(), 0);
    // One grey of half alpha, where there is an alpha, as the depths hold it: value, depth of the thumbnail, its pixel.
    const struct {
        int depth;
        std::uint32_t value;
        int thumbnailDepth;
        std::uint32_t expected;
    } cases[] = {{1, 1, 8, 0xFF000000},        {2, 2, 32, 0xFFFFFFFF},         {2, 3, 32, 0xFF000000},
                 {16, 0x4080, 32, 0x80404040}, {24, 0x302010, 24, 0xFF302010}, {32, 0x80302010, 32, 0x80302010}};
    for (const auto& c : cases) {
        importTip(tip, c.depth, 3, 2, [&](int, int) { return c.value; });
        const std::unique_ptr<XCVOffscreen> small(tip.CreateThumbnail());
        EXPECT_EQ(small->GetDepth(), c.thumbnailDepth) << c.depth;
        const XCVOffscreenAutoLock smallLock(small.get(), 2, 1, 0);
        EXPECT_EQ(small->Get32BitColor(), c.expected) << c.depth << ": " << c.value;
    }
    EXPECT_EQ(XCImagePattern().CreateThumbnail(), nullptr);
}

TEST_F(XCImagePatternTest, CopiesAndExportsTheImage) {
    XCImagePattern tip;
    importTip(tip, 32, 3, 2, [](int x, int y) { return x == y ? 0x00FFFFFFu : 0xFF102030u; });
    XCImagePattern copy(tip);
    tip.Cleanup();
    int width = 9;
    int height = 9;
    tip.GetPatternOffscreenSize(width, height);
    EXPECT_EQ(width + height, 0);
    EXPECT_EQ(tip.ExportPatternOffscreen(), nullptr);
    copy.ReplaceTransparency(0x80112233);
    const std::unique_ptr<XCVOffscreen> image(copy.ExportPatternOffscreen());
    const XCVOffscreenAutoLock lock(image.get(), 0);
    image->MoveCursor(1, 1);
    EXPECT_EQ(image->Get32BitColor(), 0x80112233u);
    image->MoveCursor(2, 1);
    EXPECT_EQ(image->Get32BitColor(), 0xFF102030u);
}

/// Paints strokes with a bending, half-transparent brush.
class BendingBrush {
public:
    BendingBrush(TestStore& store, XCImagePattern& tip, int size, bool useCache,
                 int methodKind = XCFastPixelMixer::Normal, int overSampling = 1)
        : target(store, 8, 400, 400), m_reference(store, 8, 400, 400) {
        m_brush.SetDesignatedPattern(&tip);
        PDPARAM_SIZE sizes;
        sizes.size = size;
        m_brush.SetSizeParam(sizes);
        PDPARAM_COLOR colors;
        colors.opacity = 128;
        m_brush.SetColorParam(colors);
        PDPARAM_ETC etc;
        etc.bendFlag = 1;
        etc.overSampling = overSampling;
        m_brush.SetEtcParam(etc);
        m_method.SetOffscreen(target.get(), useCache, m_reference.get(), &m_brush, methodKind, 0, 0, 0, 0);
        m_engine.SetOffscreen(PDOFFSCREENINFO(), &m_method);
    }
    XCRect draw(const std::vector<XCPointD>& points) {
        XCLinerStroke stroke;
        for (std::size_t i = 0; i < points.size(); i++) {
            XCStrokePoint point;
            point.x = points[i].x;
            point.y = points[i].y;
            i == 0 ? stroke.FirstStore(point) : stroke.Store(point);
        }
        XCRect changed;
        m_method.BeginMethod();
        m_engine.BeginDraw(&m_brush);
        m_engine.DrawStroke(&changed, &stroke, 1);
        m_engine.EndDraw(nullptr);
        m_method.EndMethod();
        return changed;
    }

    TestImage target;

private:
    TestImage m_reference;
    XCPatternDrawParam m_brush;
    XCPatternDrawMethod m_method;
    XCPatternDraw m_engine;
};

TEST_F(XCImagePatternTest, ARibbonHasNoGapAndPaintsNothingTwice) {
    XCImagePattern tip;
    importTip(tip, 8, 16, 16, [](int, int) { return 255u; });
    std::vector<XCPointD> points;
    for (int i = 0; i <= 200; i++) // a wave whose bends are tighter than the ribbon is wide
        points.emplace_back(40 + i * 1.5, 200 + 60 * std::sin(i * 0.1));
    for (bool useCache : {false, true}) {
        BendingBrush brush(m_store, tip, 40, useCache);
        const XCRect changed = brush.draw(points);
        int outside = 0;
        int tooDark = 0;
        for (int y = 0; y < 400; y++)
            for (int x = 0; x < 400; x++) {
                tooDark += brush.target.value(x, y) > 140;
                outside += brush.target.value(x, y) != 0 && !changed.PtInRect({x, y});
            }
        int gaps = 0;
        for (std::size_t i = 2; i + 2 < points.size(); i++) // the core: well within the ribbon's half width
            for (int dy = -8; dy <= 8; dy++)
                for (int dx = -8; dx <= 8; dx++)
                    gaps += brush.target.value(static_cast<int>(points[i].x) + dx,
                                               static_cast<int>(points[i].y) + dy) == 0 &&
                            i > 20 && i < 180;
        EXPECT_EQ(gaps, 0) << useCache;
        EXPECT_EQ(tooDark, 0) << useCache;
        EXPECT_EQ(outside, 0) << useCache;
    }
}

/// Short steps, of which every few turn sharply.
std::vector<XCPointD> turningSharply(double sign) {
    std::vector<XCPointD> points;
    double direction = 0.0;
    XCPointD place(90, 200);
    for (const double turn : {0.0, 0.0, 0.0, 1.2, 0.0, 0.0, -1.4, 0.0, 0.0, 2.0, 0.0, 0.0, -1.2, 0.0, 0.0, 1.4, 0.0}) {
        direction += sign * turn;
        place.x += 4 * std::cos(direction);
        place.y += 4 * std::sin(direction);
        points.push_back(place);
    }
    return points;
}

TEST_F(XCImagePatternTest, ARibbonRemembersAllOfASharpTurn) {
    XCImagePattern tip;
    importTip(tip, 8, 16, 16, [](int, int) { return 255u; });
    for (const double sign : {1.0, -1.0}) {
        const std::vector<XCPointD> points = turningSharply(sign);
        // What is erased by half twice shows; painting without a cache replaces, twice as well as once.
        BendingBrush brush(m_store, tip, 50, false, XCFastPixelMixer::Erase, 0);
        {
            const XCVOffscreenAutoLock lock(brush.target.get(), 1);
            brush.target.get()->RectFill(brush.target.get()->GetRect(), 0, 0xFF000000, 0);
        }
        brush.draw(points);
        int erased = 0;
        int twice = 0;
        for (int y = 0; y < 400; y++)
            for (int x = 0; x < 400; x++) {
                erased += brush.target.value(x, y) < 140;
                twice += brush.target.value(x, y) < 100;
            }
        EXPECT_GT(erased, 1000) << sign;
        EXPECT_EQ(twice, 0) << sign;
    }
}

// Where a sharp turn leads back over the empty sides of what was just painted, these do not keep the ribbon away.
TEST_F(XCImagePatternTest, ARibbonCoversItsEmptySides) {
    XCImagePattern tip;
    importTip(tip, 8, 16, 16, [](int x, int) { return x < 4 || x >= 12 ? 0u : 255u; });
    for (const double sign : {1.0, -1.0}) {
        BendingBrush brush(m_store, tip, 50, true);
        const std::vector<XCPointD> points = turningSharply(sign);
        brush.draw(points);
        int gaps = 0;
        for (std::size_t i = 2; i + 2 < points.size(); i++)
            for (int dy = -3; dy <= 3; dy++)
                for (int dx = -3; dx <= 3; dx++)
                    gaps +=
                        brush.target.value(static_cast<int>(points[i].x) + dx, static_cast<int>(points[i].y) + dy) == 0;
        EXPECT_EQ(gaps, 0) << sign;
    }
}

TEST_F(XCImagePatternTest, ABendedTipSkipsBadInput) {
    XCImagePattern tip;
    TestImage target(m_store, 8, 50, 50);
    XCFastPixelMixer mixer = mixerFor(target.get());
    const BENDPATTERNEND first{{10, 25}, 1.57, 10, 0};
    const BENDPATTERNEND second{{40, 25}, 1.57, 10, 1};
    EXPECT_EQ(tip.DrawBendedPattern(nullptr, target.get(), &mixer, first, second, 0, 1), 0);
    importTip(tip, 8, 4, 4, [](int, int) { return 255u; });
    for (double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1e300}) {
        EXPECT_EQ(tip.DrawBendedPattern(nullptr, target.get(), &mixer, {{bad, 0}, 0, 1, 0}, second, 0, 1), 0);
        EXPECT_EQ(tip.DrawBendedPattern(nullptr, target.get(), &mixer, {{0, 0}, bad, 1, 0}, second, 0, 1), 0);
        EXPECT_EQ(tip.DrawBendedPattern(nullptr, target.get(), &mixer, first, {{0, 0}, 0, bad, 0}, 0, 1), 0);
        EXPECT_EQ(tip.DrawBendedPattern(nullptr, target.get(), &mixer, first, {{0, 0}, 0, 1, bad}, 0, 1), 0);
    }
    EXPECT_EQ(tip.DrawBendedPattern(nullptr, target.get(), &mixer, {{0, 0}, 0, 0, 0}, {{9, 9}, 0, -1, 0}, 0, 1), 0);
    EXPECT_EQ(target.value(25, 25), 0u);
    EXPECT_EQ(tip.DrawBendedPattern(nullptr, target.get(), &mixer, first, second, 0, 1), 1);
    EXPECT_EQ(target.value(25, 25), 255u);
}

TEST_F(XCImagePatternTest, ARibbonLeavesTheBordersOfItsImageAsTheyWere) {
    XCImagePattern tip;
    importTip(tip, 8, 4, 4, [](int, int) { return 255u; });
    TestImage target(m_store, 8, 50, 50);
    XCFastPixelMixer mixer = mixerFor(target.get());
    tip.GetImage()->SetProtectBorder(1, 0);
    tip.DrawBendedPattern(nullptr, target.get(), &mixer, {{10, 25}, 1.57, 10, 0}, {{40, 25}, 1.57, 10, 1}, 0, 1);
    const XCAutoLockSimpleImage lock(tip.GetImage());
    EXPECT_EQ(tip.GetImage()->GetPixel(-1, 0), tip.GetImage()->GetPixel(0, 0));
    EXPECT_NE(tip.GetImage()->GetPixel(0, -1), tip.GetImage()->GetPixel(0, 0));
}

TEST_F(XCImagePatternTest, ARibbonThatBeginsAgainKeepsItsTip) {
    XCImagePattern dark, light;
    importTip(dark, 8, 4, 4, [](int, int) { return 255u; });
    importTip(light, 8, 4, 4, [](int, int) { return 100u; });
    PDPARAM_PATTERN list;
    list.patternKind = XCPattern::cnKindImage;
    list.patterns[0] = &dark;
    list.patterns[1] = &light;
    list.patternCount = 2;
    XCPatternDrawParam brush;
    brush.SetPatternParam(list);
    brush.SetSizeParam({20, 0, 0});
    brush.SetEtcParam({1, 0, 0, 1, 0});
    brush.ConvertPattern(); // the first tip has been used already
    TestImage target(m_store, 8, 100, 100);
    XCPatternDrawMethod method;
    method.SetOffscreen(target.get(), 0, nullptr, &brush, XCFastPixelMixer::Normal, 0, 0, 0, 0);
    method.BeginMethod();
    XCPatternDraw engine;
    engine.SetOffscreen(PDOFFSCREENINFO(), &method);
    engine.BeginDraw(&brush);
    for (const double y : {20.0, 70.0}) {
        XCLinerStroke stroke;
        for (const double x : {10.0, 20.0, 90.0}) {
            XCStrokePoint point;
            point.x = x;
            point.y = y;
            stroke.Store(point);
        }
        engine.DrawStroke(nullptr, &stroke, 1);
        EXPECT_EQ(target.value(50, static_cast<int>(y)), 100u);
        engine.ReStartDraw();
    }
    engine.EndDraw(nullptr);
    method.EndMethod();
}

TEST_F(XCImagePatternTest, TheBrushCombinesTheBitsOfItsTips) {
    const struct {
        std::vector<int> depths;
        int combined;
    } cases[] = {{{}, 0},      {{1, 1}, 1},   {{1, 2}, 2},   {{8, 1}, 8},  {{2, 8}, 32},
                 {{8, 2}, 32}, {{1, 32}, 32}, {{24, 1}, 32}, {{32, 8}, 32}};
    for (const auto& c : cases) {
        std::vector<XCImagePattern> tips(c.depths.size());
        PDPARAM_PATTERN pattern;
        pattern.patternKind = XCPattern::cnKindImage;
        pattern.patterns[31] = nullptr;
        XCImagePattern empty;
        pattern.patterns[pattern.patternCount++] = &empty;
        for (std::size_t i = 0; i < tips.size(); i++) {
            importTip(tips[i], c.depths[i], 2, 2, [](int, int) { return 1u; });
            pattern.patterns[pattern.patternCount++] = &tips[i];
        }
        XCPatternDrawParam brush;
        brush.SetPatternParam(pattern);
        EXPECT_EQ(brush.GetIamgePatternBitCount(), c.combined);
        EXPECT_EQ(brush.IsOpaquePattern(), c.combined < 8);
    }
}

/// The splatter of a seed as its pixels.
std::vector<std::uint8_t> splatter(std::uint32_t seed, int size) {
    xcSetRandomSeed(seed);
    XCVOffscreen8Bit image;
    XCPatternDraw::CreateSumiPattern(&image, size, 0.5, 0.2, 0.3, 1, 72.0);
    const XCVOffscreenAutoLock lock(&image, 0);
    std::vector<std::uint8_t> pixels;
    for (int y = 0; y < image.GetHeight(); y++)
        for (int x = 0; x < image.GetWidth(); x++) {
            image.MoveCursor(x, y);
            pixels.push_back(image.Get8BitColor());
        }
    return pixels;
}

TEST_F(XCImagePatternTest, ASplatterFollowsTheSeed) {
    const auto first = splatter(7, 100);
    EXPECT_EQ(first, splatter(7, 100));
    EXPECT_NE(first, splatter(8, 100));
    EXPECT_EQ(first.size(), 113u * 113u); // drops of 13 pixels: half way from 2.5 to a quarter of the size
    EXPECT_GT(std::count(first.begin(), first.end(), 255), 100);
    const auto tiny = splatter(7, 3);
    EXPECT_EQ(std::count(tiny.begin(), tiny.end(), 0), 9);
    EXPECT_TRUE(splatter(7, 0).empty());
    EXPECT_TRUE(splatter(7, -5).empty());
}

} // namespace
