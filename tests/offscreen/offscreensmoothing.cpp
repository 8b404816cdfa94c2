#include "offscreen/classictest.h"
#include "offscreen/smoothblends.h"
#include "ovwcmn/xcoffscreen.h"
#include "support/scopes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace {

using namespace ovw::test;
using Rows = std::vector<std::string>;

constexpr std::uint32_t cnInk = 0xFF000000;

void smooth(XCOffscreen& image) { image.DoSmoothing(nullptr, nullptr, nullptr, nullptr, nullptr); }

/// The red bytes of a row.
std::vector<int> reds(XCOffscreen& image, int y) {
    std::vector<int> values;
    for (int x = 0; x < image.GetWidth(); ++x)
        values.push_back(static_cast<int>(image.Get24BitPixel(x, y) & 255));
    return values;
}

/// Shaky lines and blobs, as scans have them: a picture is easily mirrored and turned.
void scrawl(ClassicImage& image, unsigned seed, bool colours) {
    std::mt19937 random(seed);
    for (int i = 0; i < 12; ++i) {
        const auto at = [&random] { return static_cast<int>(random() % 80) - 8; };
        image->SetForeColor(colours ? static_cast<std::uint32_t>(random()) & 0xC0C0C0 : 0);
        const int x = at(), y = at();
        if (i % 3 == 2)
            image->TrueArcFill(x, y, x + 9 + i, y + 14);
        else
            image->Line(x, y, at(), at(), 1 + i % 3);
    }
}

TEST(Smoothing, DiagonalsTakeAnEighth) {
    ClassicImage image(12, 12, 32);
    image.setAll([](int x, int y) { return y > x ? cnInk : 0xFFFFFFFF; });
    smooth(*image);
    for (int y = 3; y < 9; ++y) {
        EXPECT_EQ(image->Get24BitPixel(y - 1, y), 0x1F1F1Fu) << y; // 255 / 8
        EXPECT_EQ(image->Get24BitPixel(y, y), 0xDFDFDFu) << y;     // 255 * 7 / 8
        EXPECT_EQ(image->Get24BitPixel(y - 2, y), 0u) << y;
        EXPECT_EQ(image->Get24BitPixel(y + 1, y), 0xFFFFFFu) << y;
    }
}

TEST(Smoothing, OneStepInALine) {
    // A line of one pixel that steps down after eight: both halves end beside the other, so that both fade.
    ClassicImage image(16, 5, 32);
    image.draw({"", "########........", "........########"});
    smooth(*image);
    // Run of 8, h = 4: the end's weights are (4h + 1 + 4i) / 8h from the step inwards; white takes the rest.
    const auto faded = [](int i) { return 255 * (32 - (17 + 4 * i)) / 32; };
    std::vector<int> upper(16, 255), lower(16, 255);
    for (int i = 0; i < 4; ++i) {
        upper[3 - i] = 0, upper[7 - i] = faded(i);
        lower[8 + i] = faded(i), lower[12 + i] = 0;
    }
    const auto row1 = reds(*image, 1), row2 = reds(*image, 2);
    EXPECT_EQ(std::vector<int>(row1.begin(), row1.begin() + 8), std::vector<int>(upper.begin(), upper.begin() + 8));
    EXPECT_EQ(std::vector<int>(row2.begin() + 8, row2.end()), std::vector<int>(lower.begin() + 8, lower.end()));
    EXPECT_EQ(reds(*image, 4), std::vector<int>(16, 255));
    for (const std::uint32_t pixel : image.pixels())
        EXPECT_EQ(pixel >> 24, 255u);
}

TEST(Smoothing, QuarterPartsMeetInTheStatedMix) {
    // A block whose edge steps back by 4: the run of row 2 sticks out by 4 from rows 0 and 1.
    ClassicImage image(14, 5, 32);
    image.draw({"......########", "......########", "..############", "..############", "..############"});
    smooth(*image);
    // L = 4: 62.5 % (in two truncated quarters and half the pixel) and 87.5 % ink.
    EXPECT_EQ(image->Get24BitPixel(2, 2) & 255, 255u * 7 / 32 + 255u * 5 / 32);
    EXPECT_EQ(image->Get24BitPixel(3, 2) & 255, 255u * 4 / 32);
    EXPECT_EQ(image->Get24BitPixel(4, 2), 0u);
}

TEST(Smoothing, LeavesSolidAreasAlone) {
    for (const int depth : {24, 32}) {
        ClassicImage image(50, 40, depth, 0xFF3366CC);
        const auto before = image.pixels();
        smooth(*image);
        EXPECT_EQ(image.pixels(), before);
    }
    for (const int depth : {1, 8}) {
        ClassicImage image(50, 40, depth);
        scrawl(image, 3, false);
        const auto before = image.pixels();
        smooth(*image);
        EXPECT_EQ(image.pixels(), before);
    }
    XCOffscreen empty;
    smooth(empty);
}

/// A copy turned by quarter turns, then mirrored.
std::unique_ptr<ClassicImage> turned(ClassicImage& image, int angle, int flip) {
    auto result = std::make_unique<ClassicImage>(1, 1, 32);
    (*result)->CreateRotationImage(*image, angle, flip);
    (*result)->Lock();
    return result;
}

TEST(Smoothing, MirroredAndTurnedPicturesGiveMirroredAndTurnedResults) {
    for (unsigned seed = 0; seed < 20; ++seed) {
        ClassicImage image(64, 57, seed % 4 == 3 ? 24 : 32);
        if (seed % 4 == 2)
            image.scribble(seed); // noise, with every alpha
        else
            scrawl(image, seed, seed % 2 == 1);
        const std::pair<int, int> motions[] = {{0, 1}, {180, 1}, {90, 0}, {270, 1}};
        std::vector<std::unique_ptr<ClassicImage>> moved;
        for (const auto& [angle, flip] : motions) {
            moved.push_back(turned(image, angle, flip));
            smooth(**moved.back());
        }
        smooth(*image);
        for (std::size_t i = 0; i < moved.size(); ++i)
            EXPECT_TRUE(moved[i]->pixels() == turned(image, motions[i].first, motions[i].second)->pixels())
                << seed << ": " << motions[i].first;
    }
}

TEST(Smoothing, AreasKeepToThemselves) {
    ClassicImage image(64, 64, 32);
    scrawl(image, 1, false);
    const auto before = image.pixels();
    tagRECT area = {20, 10, 40, 50};
    image->DoSmoothing(&area, nullptr, nullptr, nullptr, nullptr);
    const auto after = image.pixels();
    int changed = 0;
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            if (before[y * 64 + x] != after[y * 64 + x]) {
                ++changed;
                EXPECT_TRUE(XCRect(19, 9, 41, 51).PtInRect({x, y})) << x << ',' << y;
            }
    EXPECT_GT(changed, 20);
    area = {100, 100, 120, 120};
    image->DoSmoothing(&area, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(image.pixels(), after);
    area = {-2147483647, -2147483647, 2147483647, 2147483647}; // whole
    ClassicImage whole(*turned(image, 0, 0));
    image->DoSmoothing(&area, nullptr, nullptr, nullptr, nullptr);
    smooth(*whole);
    EXPECT_EQ(image.pixels(), whole.pixels());
}

TEST(Smoothing, UsesTheCallersImagesAndTables) {
    ClassicImage image(64, 40, 32), own(64, 40, 32);
    scrawl(image, 2, false), scrawl(own, 2, false);
    ClassicImage work1(64, 50, 32, 0x00FFFFFF), work2(70, 40, 32, 0x00FFFFFF);
    const auto runs = std::make_unique<_LData[][3]>(64);
    const auto index = std::make_unique<int[][3]>(64);
    image->Unlock(); // locked by the operation, too
    image->DoSmoothing(nullptr, work1.get(), work2.get(), reinterpret_cast<_LData(*)[][3]>(runs.get()),
                       reinterpret_cast<int(*)[][3]>(index.get()));
    image->Lock();
    smooth(*own);
    EXPECT_EQ(image.pixels(), own.pixels());
    ClassicImage small(63, 40, 32), grey(64, 40, 8);
    for (XCOffscreen* bad : {small.get(), grey.get(), image.get()}) {
        EXPECT_EQ(errorOf([&] { image->DoSmoothing(nullptr, bad, nullptr, nullptr, nullptr); }), 0x20010008);
        EXPECT_EQ(errorOf([&] { image->DoSmoothing(nullptr, work1.get(), bad, nullptr, nullptr); }), 0x20010008);
    }
    EXPECT_EQ(image->GetLockCount(), 1);
    EXPECT_EQ(work1->GetLockCount(), 1);
}

TEST(Smoothing, MixesOfVisibleColoursAreOpaque) {
    ClassicImage image(40, 30, 32, 0x40FFFFFF);
    image.draw({"", "########........", "........########", "", "####", "  ##", "   #"}, 0x80203040);
    const auto before = image.pixels();
    smooth(*image);
    const auto after = image.pixels();
    int changed = 0;
    for (std::size_t i = 0; i < before.size(); ++i) {
        const bool isMixed = after[i] != before[i];
        EXPECT_EQ(after[i] >> 24, isMixed ? 255u : before[i] >> 24) << i;
        changed += isMixed;
    }
    EXPECT_GT(changed, 6);
}

TEST(Smoothing, MixesOfColourAndOfAlphaMeet) {
    // A corner of two steps of 4, towards opaque black and towards nothing, in either order.
    using ovw::offscreen::Blend, ovw::offscreen::PixelView, ovw::offscreen::SmoothBlends, ovw::offscreen::SmoothedPixel;
    const ovw::offscreen::ArgbPixel own{255, 200, 100, 40}, black{255, 0, 0, 0}, nothing{0, 255, 255, 255};
    const auto partsOf = [&](const auto& partner, bool isOpaque) {
        return SmoothedPixel{SmoothedPixel::Kind::parts, Blend{7, 1, 32}(partner, own, isOpaque),
                             Blend{5, 3, 32}(partner, own, isOpaque)};
    };
    const SmoothedPixel found[] = {partsOf(black, true), partsOf(nothing, false)};
    for (const int first : {0, 1}) {
        ClassicImage image(1, 1, 32), work1(1, 1, 32), work2(1, 1, 32);
        image->Set32BitPixel(0xFF2864C8, 0, 0);
        std::uint8_t mark = 0;
        SmoothBlends blends(PixelView(*work1), PixelView(*work2), &mark, 1);
        blends.add(0, 0, own, found[first]);
        blends.add(0, 0, own, found[1 - first]);
        blends.mergeInto(PixelView(*image), XCRect(0, 0, 1, 1));
        // Opaque parts are quarters: (63 + 255 / 32) / 2 + 63 + 255 * 3 / 32 + 255 / 4.
        EXPECT_EQ(image->Get32BitPixel(0, 0), 184u << 24 | 0x2864C8);
    }
}

TEST(Smoothing, InkOnNothingFadesByAlpha) {
    ClassicImage image(16, 5, 32, 0x00FFFFFF);
    image.draw({"", "########........", "........########"});
    smooth(*image);
    EXPECT_EQ(image->Get32BitPixel(0, 1), cnInk);
    const std::uint32_t faded = image->Get32BitPixel(7, 1);
    EXPECT_EQ(faded & 0xFFFFFF, 0u);        // black still
    EXPECT_EQ(faded >> 24, 255u * 17 / 32); // by alpha
    EXPECT_EQ(image->Get32BitPixel(3, 4), 0x00FFFFFFu);
}

} // namespace
