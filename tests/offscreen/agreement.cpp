#include "mixing/instructionset.h"
#include "offscreen/classictest.h"
#include "ovwcmn/xcoffscreen.h"
#include "ovwcmn/xcvirtualmemory.h"
#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

/// The same picture through classic and through tiled images: operations that both have give the same pixels.

namespace {

using namespace ovw::test;
using ovw::mixing::InstructionSet;
using Tiled = std::unique_ptr<XCVOffscreen>;

// Several blocks of tiled images, none of them whole.
constexpr int cnWidth = 301;
constexpr int cnHeight = 290;
constexpr std::uint32_t cnGrey = 0xFF000000 | 0x40 * 0x010101; // greys are filled alike at every depth

enum class Pictures {
    any,
    blank,  ///< onto nothing: tiled images leave what is there where all is transparent
    opaque, ///< the same, and without transparency, which classic images drop
};

/// An operation of both kinds: what becomes of an image with another one as source.
struct Operation {
    const char* name;
    Pictures pictures;
    void (*classic)(XCOffscreen& image, XCOffscreen& source);
    void (*tiled)(Tiled& image, XCVOffscreen& source);
};

template <int Angle, int FlipX, int FlipY>
void turnTiled(Tiled& image, XCVOffscreen& source) {
    XCPoint shift;
    const Tiled turned(source.CreateAndRotateOffscreen(Angle, FlipX, FlipY, shift));
    const bool isAcross = Angle % 180 != 0;
    const int width = isAcross ? cnHeight : cnWidth, height = isAcross ? cnWidth : cnHeight;
    image.reset(XCVOffscreen::CreateOffscreen(source.GetDepth()));
    image->Create(xcGetVirtualMemory(), width, height, 72);
    image->Copy(0, 0, width, height, turned.get(), shift.x, shift.y, 0);
}

template <int W, int H, int Quality>
void fitClassic(XCOffscreen& image, XCOffscreen& source) {
    image.ChangeResolution(0, 0, W, H, &source, 0, 0, 2 * (cnWidth / 2), 2 * (cnHeight / 2), Quality);
}
template <int W, int H, CHANGE_RESOLUTION_MODE Mode>
void fitTiled(Tiled& image, XCVOffscreen& source) {
    image->ChangeResolution(0, 0, W, H, &source, 0, 0, 2 * (cnWidth / 2), 2 * (cnHeight / 2), Mode, 0);
}

/// A part of the picture, in squares.
template <int Factor>
void reduceClassic(XCOffscreen& image, XCOffscreen& source) {
    image.ChangeResolution(3, 1, 272 / Factor, 280 / Factor, &source, 8, 5, 272, 280, 1);
}
template <int Factor>
void reduceTiled(Tiled& image, XCVOffscreen& source) {
    image->ChangeResolution(3, 1, 272 / Factor, 280 / Factor, &source, 8, 5, 272, 280, CHANGE_RESOLUTION_LOW, 0);
}

/// What the picture's blobs leave open; each depth fills it with a colour that it keeps.
void floodTiled(Tiled& image, XCVOffscreen& source) {
    XCRect changed;
    const std::uint32_t colour = source.GetDepth() == 1    ? 0xFF000000
                                 : source.GetDepth() == 24 ? cnGrey & 0xFFFFFF
                                                           : cnGrey;
    image->Copy(0, 0, cnWidth, cnHeight, &source, 0, 0, 0);
    image->FloodFill(changed, {1, 1}, colour, image.get(), nullptr, {0, 0}, image->GetRect(), 0, nullptr, 0);
}
void floodClassic(XCOffscreen& image, XCOffscreen& source) {
    image.SetForeColor(source.GetBitCount() == 1 ? 0xFF000000 : cnGrey);
    image.Copy(0, 0, cnWidth, cnHeight, &source, 0, 0);
    image.SeedScanFill({1, 1}, nullptr);
}
void rowsTiled(Tiled& image, XCVOffscreen&) {
    const XCVOffscreenAutoLock lock(image.get(), 1);
    for (int y = 0; y < cnHeight; y += 7)
        image->FillLineRow(y - 20, y + 200, y, 0xFF000000, nullptr);
}
void rowsClassic(XCOffscreen& image, XCOffscreen&) {
    for (int y = 0; y < cnHeight; y += 7)
        image.FillLineRow(y - 20, y + 200, y);
}

constexpr CHANGE_RESOLUTION_MODE cnLow = CHANGE_RESOLUTION_LOW, cnHigh = CHANGE_RESOLUTION_HIGH;

const Operation cnOperations[] = {
    {"copy", Pictures::any, [](XCOffscreen& i, XCOffscreen& s) { i.Copy(-3, 17, 280, 400, &s, 5, 2); },
     [](Tiled& i, XCVOffscreen& s) { i->Copy(-3, 17, 280, 400, &s, 5, 2, 0); }},
    {"mirror", Pictures::any, [](XCOffscreen& i, XCOffscreen& s) { i.FlipImage(s, 0, 0, cnWidth, cnHeight, 0); },
     turnTiled<0, 1, 0>},
    {"upside down", Pictures::any, [](XCOffscreen& i, XCOffscreen& s) { i.FlipImage(s, 0, 0, cnWidth, cnHeight, 1); },
     turnTiled<0, 0, 1>},
    {"quarter turn", Pictures::any, [](XCOffscreen& i, XCOffscreen& s) { i.CreateRotationImage(s, 90, 0); },
     turnTiled<90, 0, 0>},
    {"half turn", Pictures::any, [](XCOffscreen& i, XCOffscreen& s) { i.CreateRotationImage(s, 180, 0); },
     turnTiled<180, 0, 0>},
    {"turn back, mirrored", Pictures::any, [](XCOffscreen& i, XCOffscreen& s) { i.CreateRotationImage(s, 270, 1); },
     turnTiled<270, 1, 0>},
    {"nearest", Pictures::any, fitClassic<77, 290, 0>,
     [](Tiled& i, XCVOffscreen& s) { i->StretchCopy(0, 0, 77, 290, &s, 0, 0, 300, 290); }},
    {"halves", Pictures::opaque, fitClassic<150, 145, 2>, fitTiled<150, 145, cnHigh>},
    {"halves of whole pixels", Pictures::blank, fitClassic<150, 145, 1>, fitTiled<150, 145, cnLow>},
    {"quarters of whole pixels", Pictures::blank, reduceClassic<4>, reduceTiled<4>},
    {"eighths of whole pixels", Pictures::blank, reduceClassic<8>, reduceTiled<8>},
    {"whole pixels", Pictures::blank, fitClassic<111, 123, 1>, fitTiled<111, 123, cnLow>},
    {"areas", Pictures::opaque, fitClassic<111, 123, 2>, fitTiled<111, 123, cnHigh>},
    {"flood fill", Pictures::any, floodClassic, floodTiled},
    {"rectangle", Pictures::any,
     [](XCOffscreen& i, XCOffscreen&) {
         i.RectFill({5, 9, 288, 270});
     },
     [](Tiled& i, XCVOffscreen&) {
         i->RectFill({5, 9, 288, 270}, 0, 0xFF000000);
     }},
    {"rows", Pictures::any, rowsClassic, rowsTiled},
    {"ellipse", Pictures::any, [](XCOffscreen& i, XCOffscreen&) { i.ArcFill(-20, 14, 270, 275); },
     [](Tiled& i, XCVOffscreen&) { i->ArcFill(-20, 14, 270, 275, 0xFF000000, nullptr); }},
};

/// Blobs of flat colours, and noise in a corner; alphas of every kind on request.
void paint(ClassicImage& image, unsigned seed, bool isOpaque) {
    std::mt19937 random(seed);
    for (int n = 0; n < 60; ++n) {
        image->SetForeColor(image->GetBitCount() == 1 && n % 2 ? 0xFF000000 : 0xFF000000 | random());
        const int x = static_cast<int>(random() % cnWidth), y = static_cast<int>(random() % cnHeight);
        image->TrueArcFill(x, y, x + 10 + static_cast<int>(random() % 50), y + 20);
    }
    for (int y = 180; y < cnHeight; ++y)
        for (int x = 190; x < cnWidth; ++x) {
            const auto colour = static_cast<std::uint32_t>(random());
            image->Set32BitPixel(isOpaque || colour % 3 == 0 ? colour | 0xFF000000
                                 : colour % 3 == 1           ? 0x00FFFFFF
                                                             : colour,
                                 x, y);
        }
}

void expectAgreement(const Operation& operation, int depth) {
    const bool isOpaque = operation.pictures == Pictures::opaque;
    ClassicImage image(cnWidth, cnHeight, depth, depth == 32 ? 0x00FFFFFF : 0xFFFFFFFF);
    ClassicImage source(cnWidth, cnHeight, depth);
    paint(source, 7, isOpaque);
    if (operation.pictures == Pictures::any)
        paint(image, 5, isOpaque);
    image->SetForeColor(0xFF000000);
    Tiled tiled(image->CopyToOffscreen());
    const Tiled tiledSource(source->CopyToOffscreen());
    operation.classic(*image, *source);
    operation.tiled(tiled, *tiledSource);
    ClassicImage other(1, 1, depth);
    other->CopyFromOffscreen(tiled.get());
    image->Lock(), other->Lock();
    ASSERT_EQ(image->GetWidth(), other->GetWidth());
    ASSERT_EQ(image->GetHeight(), other->GetHeight());
    auto a = image.pixels(), b = other.pixels();
    if (operation.pictures == Pictures::blank) // a mean without alpha may have a colour, which nobody sees
        for (auto* pixels : {&a, &b})
            std::replace_if(
                pixels->begin(), pixels->end(), [](std::uint32_t c) { return c >> 24 == 0; }, 0x00FFFFFF);
    for (std::size_t i = 0; i < a.size(); ++i)
        ASSERT_EQ(a[i], b[i]) << operation.name << ", " << depth << " bits at "
                              << i % static_cast<std::size_t>(image->GetWidth()) << ','
                              << i / static_cast<std::size_t>(image->GetWidth());
}

TEST(Agreement, ClassicAndTiledImagesComeToTheSamePixels) {
    xcCreateVirtualMemory(nullptr);
    const InstructionSet best = ovw::mixing::instructionSet();
    for (const InstructionSet set : {InstructionSet::Base, InstructionSet::Avx2, InstructionSet::Avx512})
        if (ovw::mixing::forceInstructionSet(set))
            for (const Operation& operation : cnOperations)
                for (const int depth : cnClassicDepths)
                    expectAgreement(operation, depth);
    ovw::mixing::forceInstructionSet(best);
    xcDestroyVirtualMemory();
}

} // namespace
