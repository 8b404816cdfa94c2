#include "ovwcmn/xcfastpixelmixer.h"

#include "easel.h"

#include "ovwcmn/xccoloraverage.h"
#include "ovwcmn/xcsimpleimage.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

using Mixer = XCFastPixelMixer;
using ovw::test::cnBelow;
using ovw::test::cnPaint;
using ovw::test::Easel;
using ovw::test::TestImage;
using ovw::test::withAlpha;

constexpr std::uint32_t cnSub = 0xFF0000FF; // red

/// A locked source image of one row of pixels, or of several equal ones.
class Stamp {
public:
    Stamp(Easel& easel, int depth, const std::vector<std::uint32_t>& pixels, int rows = 1) {
        TestImage image(easel.store(), depth, int(pixels.size()), rows);
        for (int y = 0; y < rows; ++y)
            for (std::size_t x = 0; x < pixels.size(); ++x)
                image.setValue(int(x), y, pixels[x]);
        m_image.CopyFromOffscreen(image.get());
        m_lock.LockImage(&m_image);
    }
    XCSimpleImage* get() { return &m_image; }

private:
    XCSimpleImage m_image;
    XCAutoLockSimpleImage m_lock;
};

/// Pixels 0 to n - 1 of row 0 after one stamp whose first pixel samples (u, 0).
std::vector<std::uint32_t> stamped(Easel& easel, Stamp& stamp, int n, double u = 0, double du = 1) {
    easel.mixer.MoveCursorToBlock(0, 0);
    easel.mixer.SetSrcUVParam(u, 0, du, 0);
    easel.mixer.DoLineRowCopy(0, n, 0, stamp.get());
    std::vector<std::uint32_t> values;
    for (int x = 0; x < n; ++x)
        values.push_back(easel.value(x));
    return values;
}

using Values = std::vector<std::uint32_t>;

} // namespace

TEST(FastPixelMixerCopy, TheEndIsNotPainted) {
    Easel easel(8);
    Stamp stamp(easel, 8, {255, 255, 255});
    easel.mixer.MoveCursorToBlock(0, 0);
    easel.mixer.DoLineRowCopy(5, 5, 0, stamp.get());
    EXPECT_EQ(easel.value(5), 0u);
    easel.mixer.SetSrcUVParam(0, 0, 1, 0);
    easel.mixer.DoLineRowCopy(5, 7, 0, stamp.get());
    EXPECT_EQ(easel.value(6), 255u);
    EXPECT_EQ(easel.value(7), 0u);
}

TEST(FastPixelMixerCopy, StepsThroughTheSourceAndBeyond) {
    Easel easel(8);
    Stamp stamp(easel, 8, {10, 20, 30});
    easel.mixer.SetDrawCompositioin(Mixer::Replace);
    EXPECT_EQ(stamped(easel, stamp, 8, -1), (Values{0, 10, 20, 30, 0, 0, 0, 0}));
    EXPECT_EQ(stamped(easel, stamp, 6, 0.75, 0.5), (Values{10, 20, 20, 30, 30, 0}));
    EXPECT_EQ(stamped(easel, stamp, 4, 2.5, -1), (Values{30, 20, 10, 30}));
    stamp.get()->SetProtectBorder(1, 0);
    EXPECT_EQ(stamped(easel, stamp, 6, -2), (Values{10, 10, 10, 20, 30, 30}));
}

TEST(FastPixelMixerCopy, ASpanThatBeginsLeftOfTheBlockLosesNoMoreThanThat) {
    for (const bool isSoft : {false, true}) {
        Easel easel(8);
        Stamp stamp(easel, 8, {10, 20, 30, 40, 50, 60, 70, 80, 90, 100}, 2);
        easel.mixer.SetDrawCompositioin(Mixer::Replace);
        easel.mixer.SetStyleFlag(Mixer::STYLE_ANTIALIAS, isSoft);
        easel.mixer.MoveCursorToBlock(256, 0);
        if (isSoft)
            easel.mixer.SetSrcUVParamAntiAlias(0, 0, 1, 0, 0, 1, 1, 0);
        else
            easel.mixer.SetSrcUVParam(0, 0, 1, 0);
        easel.mixer.DoLineRowCopy(250, 260, 0, stamp.get());
        EXPECT_EQ(easel.value(255), 0u);
        for (int x = 256; x < 260; ++x)
            EXPECT_EQ(easel.value(x), std::uint32_t(10 * (x - 249))) << x << (isSoft ? ", 2 x 2" : "");
    }
}

TEST(FastPixelMixerCopy, TheNextRowBeginsAtTheSameColumn) {
    Easel easel(8);
    Stamp stamp(easel, 8, {10, 20, 30, 40}, 2);
    easel.mixer.SetDrawCompositioin(Mixer::Replace);
    easel.mixer.MoveCursorToBlock(0, 0);
    easel.mixer.SetSrcUVParam(1, 0, 1, 0);
    easel.mixer.DoLineRowCopy(0, 3, 0, stamp.get());
    easel.mixer.SetSrcVParam(1);
    easel.mixer.DoLineRowCopy(0, 3, 1, stamp.get());
    for (int x = 0; x < 3; ++x)
        EXPECT_EQ(easel.value(x, 1), std::uint32_t(20 + 10 * x));
}

TEST(FastPixelMixerCopy, FourSamplesAreAveraged) {
    Easel easel(8);
    Stamp stamp(easel, 8, {255, 255, 0, 100}, 2);
    easel.mixer.SetDrawCompositioin(Mixer::Replace);
    easel.mixer.SetStyle(Mixer::STYLE_ANTIALIAS);
    easel.mixer.MoveCursorToBlock(0, 0);
    easel.mixer.SetSrcUVParamAntiAlias(0, 0, 2, 0, 0, 1, 2, 0);
    easel.mixer.DoLineRowCopy(0, 3, 0, stamp.get());
    EXPECT_EQ(easel.value(0), 255u);
    EXPECT_EQ(easel.value(1), 50u); // 200 >> 2
    EXPECT_EQ(easel.value(2), 0u);
}

TEST(FastPixelMixerCopy, TwoBitSourcesPaintTwoColors) {
    Easel direct(32);
    direct.mixer.SetSubColor(cnSub);
    Stamp stamp(direct, 2, {0, 2, 3});
    EXPECT_EQ(stamped(direct, stamp, 3), (Values{0x00FFFFFF, cnSub, cnPaint}));

    Easel gray(32, true);
    gray.mixer.SetSubColor(cnSub);
    gray.set(0, withAlpha(cnBelow, 255));
    EXPECT_EQ(stamped(gray, stamp, 3), (Values{withAlpha(cnBelow, 255), 0x00FFFFFF, cnPaint}));

    Easel color(32, true, true);
    color.mixer.SetSubColor(cnSub);
    EXPECT_EQ(stamped(color, stamp, 3), (Values{0x00FFFFFF, cnSub, cnPaint}));
}

TEST(FastPixelMixerCopy, BitsWithoutACache) {
    struct Row {
        const char* name;
        int depth, sourceDepth, composition;
        std::uint32_t color;
        Values source, before, after;
    };
    const Values white{0xFFFFFF, 0xFFFFFFFF, 0xFF000000};
    const Row rows[] = {
        {"2 on 2, light", 2, 2, 1, 0xFF000080, {0, 2, 3}, {3, 0, 0}, {3, 3, 2}},
        {"2 on 2, dark", 2, 2, 1, 0xFF00007F, {0, 2, 3}, {2, 0, 0}, {2, 2, 3}},
        {"2 on 2, erase", 2, 2, 2, 0xFF000080, {0, 2, 3}, {3, 3, 3}, {3, 3, 0}},
        {"1 on 2, light", 2, 1, 1, 0xFF000080, {0, 1, 1}, {3, 3, 0}, {3, 2, 2}},
        {"2 on 1", 1, 2, 1, 0xFF000080, {0, 2, 3}, {0, 0, 0}, {0, 0, 1}},
        {"2 on 1, erase", 1, 2, 2, 0xFF000080, {0, 2, 3}, {1, 1, 1}, {1, 1, 0}},
        {"8 on 1", 1, 8, 1, 0xFF000080, {0, 1, 255}, {0, 0, 0}, {0, 1, 1}},
        {"32 on 1", 1, 32, 1, 0xFF000080, white, {0, 0, 0}, {0, 1, 1}},
        {"32 on 1, erase", 1, 32, 2, 0xFF000080, white, {1, 1, 1}, {1, 0, 0}},
    };
    for (const Row& row : rows) {
        Easel easel(row.depth);
        Stamp stamp(easel, row.sourceDepth, row.source);
        easel.mixer.SetColor(row.color);
        easel.mixer.SetDrawCompositioin(row.composition);
        for (int x = 0; x < 3; ++x)
            easel.set(x, row.before[std::size_t(x)]);
        EXPECT_EQ(stamped(easel, stamp, 3), row.after) << row.name;
    }
}

TEST(FastPixelMixerCopy, DitherSetsThePixelsUpToTheOpacity) {
    Easel easel(1);
    Stamp stamp(easel, 1, Values(16, 1), 16);
    easel.mixer.SetStyle(Mixer::STYLE_DITHER);
    easel.mixer.SetCacheAlpha(128.5f / 255); // b = 128
    easel.mixer.MoveCursorToBlock(0, 0);
    int n = 0;
    for (int y = 0; y < 16; ++y) {
        easel.mixer.SetSrcUVParam(0, y, 1, 0);
        easel.mixer.DoLineRowCopy(0, 16, y, stamp.get());
        for (int x = 0; x < 16; ++x)
            n += int(easel.value(x, y));
    }
    EXPECT_EQ(n, 129);
}

TEST(FastPixelMixerCopy, AColorBrushCoversByItsDarkness) {
    Easel easel(8, true);
    Stamp stamp(easel, 32, {0xFF000000, 0xFFFFFFFF, 0x80000000, 0x00000000, 0xFF0000FF});
    stamped(easel, stamp, 5);
    // 4211070 * 128 >> 15, (4211070 - 4936 * 255) * 255 >> 15
    const Values covered{32768, 0, 16449, 0, 22975};
    for (int x = 0; x < 5; ++x)
        EXPECT_EQ(easel.cache().value(x, 0), covered[std::size_t(x)]) << x;
    EXPECT_EQ(easel.value(0), 255u);
    EXPECT_EQ(easel.value(1), 0u);
}

TEST(FastPixelMixerCopy, ImageColorsOn24BitsNeedTheirFlag) {
    Easel easel(24);
    Stamp stamp(easel, 32, {0xFF112233, 0x00112233});
    easel.set(1, cnBelow);
    EXPECT_EQ(stamped(easel, stamp, 2), (Values{cnPaint & 0xFFFFFF, cnBelow}));
    easel.mixer.SetStyle(Mixer::STYLE_IMAGE_COLOR);
    EXPECT_EQ(stamped(easel, stamp, 2), (Values{0x112233, cnBelow}));
}

TEST(FastPixelMixerCopy, ColorBrushesMoveTheColorCache) {
    Easel easel(32, true, true);
    Stamp first(easel, 32, {0xFF0000C8});
    Stamp second(easel, 32, {0xFFC80000});
    easel.set(0, 0xFFFFFFFF);
    easel.mixer.SetCacheAlpha(0.5f);
    stamped(easel, first, 1);
    EXPECT_EQ(easel.cache().value(0, 0), 16384u);
    EXPECT_EQ(easel.colorCache().value(0, 0) & 0xFFFFFF, 0xC8u);
    stamped(easel, second, 1);
    EXPECT_EQ(easel.cache().value(0, 0), 24576u);
    // weight 16384 / 24576 = 21845 of 32768: red 200 * 10923, blue 200 * 21845
    EXPECT_EQ(easel.colorCache().value(0, 0) & 0xFFFFFF, 0x850043u);
    EXPECT_EQ(easel.value(0), 0xFFA44072u); // 3/4 of (67, 0, 133), 1/4 of white
}

TEST(FastPixelMixerCopy, SourcesWithoutAlphaCoverInFull) {
    struct Row {
        int depth;
        bool hasCache, hasColorCache;
        std::uint32_t style, inside, outside;
    };
    const Row rows[] = {
        {32, false, false, 0, 0xFF112233, 0x00FFFFFF},
        {24, false, false, 0, cnPaint & 0xFFFFFF, 0xFFFFFF},
        {24, false, false, Mixer::STYLE_IMAGE_COLOR, 0x112233, 0xFFFFFF},
        {8, false, false, 0, 255, 0},
        {1, false, false, 0, 1, 0},
        {32, true, false, Mixer::STYLE_CACHE_OVER, cnPaint, 0x00FFFFFF},
        {32, true, true, Mixer::STYLE_CACHE_OVER, 0xFF112233, 0x00FFFFFF},
        {2, true, true, Mixer::STYLE_CACHE_OVER, 3, 0},
    };
    for (const Row& row : rows) {
        Easel easel(row.depth, row.hasCache, row.hasColorCache);
        easel.mixer.SetStyle(row.style);
        for (int x = 0; x < 3; ++x)
            easel.set(x, row.outside);
        Stamp stamp(easel, 24, {0x112233});
        EXPECT_EQ(stamped(easel, stamp, 3, -1), (Values{row.outside, row.inside, row.outside})) << row.depth << " bits";
    }
}

TEST(FastPixelMixerCopy, ColorBrushesFadeOutByTheirSamples) {
    for (const int depth : {2, 32}) {
        Easel easel(32, true, true);
        Stamp stamp(easel, depth, Values(2, depth == 2 ? 3 : cnPaint), 2);
        easel.mixer.SetStyleFlag(Mixer::STYLE_ANTIALIAS, 1);
        easel.mixer.MoveCursorToBlock(0, 0);
        easel.mixer.SetSrcUVParamAntiAlias(0, 0, 2, 0, 0, 2, 2, 0); // the second line misses the source
        easel.mixer.DoLineRowCopy(0, 1, 0, stamp.get());
        EXPECT_EQ(easel.cache().value(0, 0), 16384u) << depth << " bits";
        EXPECT_EQ(easel.value(0), withAlpha(cnPaint & 0xFFFFFF, 127)) << depth << " bits";
    }
}

TEST(FastPixelMixerCopy, WithoutOpacityBitsStay) {
    Easel easel(1);
    Stamp stamp(easel, 1, {1});
    easel.mixer.SetCacheAlpha(0);
    EXPECT_EQ(stamped(easel, stamp, 1), Values{0});
}

TEST(FastPixelMixerCopy, FarCoordinatesDoNotComeBack) {
    Easel easel(8);
    Stamp stamp(easel, 8, {255});
    easel.mixer.SetDrawCompositioin(Mixer::Replace);
    // Two steps of 65535 pixels from 2 are 131072 pixels, the range of 32 bits: pixel 0 if they wrapped.
    EXPECT_EQ(stamped(easel, stamp, 4, 2, 65535), (Values{0, 0, 0, 0}));
    easel.mixer.SetSrcUVParam(0, 0, -1e30, 0);
    easel.mixer.DoLineRowCopy(-2147483647, 4, 0, stamp.get());
    EXPECT_EQ(easel.value(0), 0u);
}

TEST(FastPixelMixerCopy, SamplingAloneDoesNotReadTheSource) {
    Easel easel(32, true, true);
    XCColorAverage average;
    easel.mixer.SetColorAverage(&average);
    easel.mixer.SetDrawCompositioin(Mixer::Water);
    easel.set(0, 0xFF0000C8);
    Stamp stamp(easel, 8, {0});
    stamped(easel, stamp, 1);
    EXPECT_EQ(average.IsAverageColor(), 0);
    easel.mixer.SetStyleFlag(Mixer::STYLE_SAMPLE_ONLY, 1);
    stamped(easel, stamp, 1);
    EXPECT_EQ(average.ConvertSmudgeColor(0), 0xFF0000C8u);
}

TEST(FastPixelMixerCopy, AColorCacheNeedsNoAlpha) {
    struct Row {
        int depth, cacheDepth;
        std::uint32_t pixel, painted, cached;
    };
    for (const Row row : {Row{32, 24, 0xFF112233, 0xFF112233, 0x112233}, Row{2, 8, 2, 2, 255}}) {
        Easel easel(row.depth, true);
        TestImage colors(easel.store(), row.cacheDepth, 400, 40);
        const XCVOffscreenAutoLock lock(colors.get(), 1);
        easel.mixer.SetCacheColorOffscreen(colors.get());
        Stamp stamp(easel, row.depth, {row.pixel});
        EXPECT_EQ(stamped(easel, stamp, 1), Values{row.painted}) << row.depth << " bits";
        EXPECT_EQ(colors.value(0, 0), row.cached) << row.depth << " bits";
    }
}

TEST(FastPixelMixerCopy, CombinationsWithoutAKernelDrawNothing) {
    struct Row {
        int depth, composition;
        bool hasColorCache;
    };
    for (Row row : {Row{16, 1, false}, Row{16, 1, true}, Row{8, 1, true}, Row{24, 5, true}, Row{1, 5, true},
                    Row{2, 7, true}, Row{16, 5, true}, Row{8, 5, false}, Row{32, 7, false}}) {
        for (bool hasCache : {false, true}) {
            if (!hasCache && row.depth != 16)
                continue;
            Easel easel(row.depth, hasCache, row.hasColorCache);
            XCColorAverage average;
            easel.mixer.SetColorAverage(&average);
            easel.mixer.SetDrawCompositioin(row.composition);
            Stamp stamp(easel, 8, {255});
            easel.set(0, 1);
            EXPECT_EQ(stamped(easel, stamp, 1), Values{1}) << row.depth << " bits, composition " << row.composition;
            EXPECT_EQ(easel.cache().value(0, 0), 0u) << row.depth << " bits, composition " << row.composition;
        }
    }
}
