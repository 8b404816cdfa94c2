#include "ovwcmn/xcoffscreen.h"

#include "offscreen/classictest.h"
#include "support/scopes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace {

using namespace ovw::test;

constexpr int cnParameter = 0x20010008;
constexpr int cnHuge = 2147483647;

TEST(XCOffscreen, SizesOfRowsAndBuffers) {
    EXPECT_EQ(XCOffscreen::Align32Bit(33), 64);
    EXPECT_EQ(XCOffscreen::Align32Bit(0), 0);
    EXPECT_EQ(XCOffscreen::Align64Bit(65), 128);
    EXPECT_EQ(XCOffscreen::Align32Bit(cnHuge), 2147483648);
    EXPECT_EQ(XCOffscreen::CalcRowLineBufferSize(10, 1), 4u);
    EXPECT_EQ(XCOffscreen::CalcRowLineBufferSize(3, 24), 12u);
    EXPECT_EQ(XCOffscreen::CalcBufferSize(5, 7, 8), 56u);
    for (const int depth : {0, 2, 16, 64, -1})
        EXPECT_EQ(errorOf([depth] { XCOffscreen::CalcRowLineBufferSize(1, depth); }), cnParameter) << depth;
    EXPECT_EQ(errorOf([] { XCOffscreen::CalcBufferSize(cnHuge, 1, 32); }), cnParameter);
    EXPECT_EQ(errorOf([] { XCOffscreen::CalcBufferSize(65536, 65536, 8); }), cnParameter);
}

TEST(XCOffscreen, ImpossibleImagesAreNotCreated) {
    struct {
        int width, height, depth;
    } const cases[] = {{0, 1, 8}, {1, 0, 8}, {-1, 4, 1}, {4, 4, 16}, {cnHuge, cnHuge, 1}, {65536, 65536, 8}, {1, 1, 0}};
    for (const auto& c : cases) {
        XCOffscreen image;
        image.Create(3, 3, 8, 0, 1);
        EXPECT_EQ(errorOf([&] { image.Create(c.width, c.height, c.depth, 0, 1); }), cnParameter) << c.width;
        EXPECT_EQ(image.GetBitCount(), 0);
        EXPECT_EQ(image.GetBufferSize(), 0u);
    }
    XCOffscreen empty;
    EXPECT_EQ(errorOf([&] { empty.Lock(); }), 8);
    empty.Unlock();
    EXPECT_EQ(empty.GetLockCount(), 0);
    tagRECT extent;
    EXPECT_EQ(empty.GetExtentRect(extent), 0);
    empty.RectFill({0, 0, 5, 5}); // nothing to draw into
    EXPECT_EQ(empty.CreateMask(), nullptr);
}

TEST(XCOffscreen, LocksNest) {
    XCOffscreen image;
    image.Create(4, 4, 24, 0x00102030, 1);
    EXPECT_EQ(image.GetBaseAddress(), nullptr);
    image.Lock();
    image.Lock();
    image.Unlock();
    ASSERT_NE(image.GetBaseAddress(), nullptr);
    EXPECT_EQ(image.GetBaseAddress()[0], 0x30); // red first
    XCStLockOff named(&image);
    EXPECT_EQ(image.GetLockCount(), 2);
    named.Unlock();
    named.Unlock();
    image.Unlock();
    EXPECT_EQ(image.GetBaseAddress(), nullptr);
    image.Unlock();
    image.RectFill({0, 0, 4, 4}); // not locked
    EXPECT_EQ(image.Get24BitPixel(0, 0), 0xFFFFFFu);
    image.Lock();
    EXPECT_EQ(image.Get24BitPixel(3, 3), 0x00102030u);
    XCOffscreen copy(image);
    EXPECT_EQ(copy.GetLockCount(), 0);
    copy.Lock();
    EXPECT_EQ(copy.Get24BitPixel(3, 3), 0x00102030u);
}

TEST(XCOffscreen, TakesOverImagesOfTheUtilityLibrary) {
    VXHANDLE handle;
    ASSERT_EQ(vxImageCreate(5, 4, 8, &handle), 0);
    XCOffscreen image;
    image.SetRTImage(handle);
    EXPECT_EQ(image.GetWidth(), 5);
    EXPECT_EQ(image.GetRowBytes(), 8);
    const VXHANDLE plain = vxAlloc(100, 0, nullptr);
    EXPECT_EQ(errorOf([&] { image.SetRTImage(plain); }), cnParameter);
    EXPECT_EQ(image.GetHeight(), 4);
    vxFree(plain);
    EXPECT_EQ(vxImageCreate(1 << 20, 1 << 20, 32, &handle), 87);
}

TEST(XCOffscreen, ForeColourByDepth) {
    struct {
        std::uint32_t colour;
        int bit, density;
    } const cases[] = {{0xFFFFFF, 0, 0},   {0x000000, 1, 255}, {0x808080, 0, 127},
                       {0x7F7F7F, 1, 128}, {0x000002, 1, 255}, {0x000003, 1, 254}};
    XCOffscreen image;
    for (const auto& c : cases) {
        image.SetForeColor(c.colour);
        EXPECT_EQ(image.Get1BitForeColor(), c.bit) << c.colour;
        EXPECT_EQ(image.Get8BitForeColor(), c.density) << c.colour;
    }
    image.SetForeColor(tagVXRGBCOLOR16{0xFFFF, 0x1100, 0x2200, 0x3300});
    EXPECT_EQ(image.GetForeColor(), 0x332211u);
    image.SetTransparency(300);
    EXPECT_EQ(image.GetTransparency(), 255);
}

/// The conversions by their tables, apart from the library: channels in the order alpha, red, green, blue.
struct Reference {
    int depth;
    int a = 255, r = 255, g = 255, b = 255, d = 0; // d: the bit or the density

    int sum() const { return r + g + b; }
    int read(int as) const {
        if (as == 1)
            return depth == 1 ? d : depth == 8 ? d >= 128 : sum() < 382;
        return depth == 1 ? (d ? 255 : 0) : depth == 8 ? d : static_cast<int>(255 - sum() * 0.333);
    }
    std::uint32_t readColour(int as) const {
        const auto pack = [](unsigned alpha, unsigned red, unsigned green, unsigned blue) {
            return alpha << 24 | blue << 16 | green << 8 | red;
        };
        const unsigned grey = depth == 1 ? (d ? 0 : 255) : 255 - d;
        const unsigned opaque = as == 32 ? 255 : 0;
        return depth <= 8 ? pack(opaque, grey, grey, grey) : pack(depth == 32 && as == 32 ? a : opaque, r, g, b);
    }
    void writeValue(int as, int v) {
        if (depth == 1)
            d = as == 1 ? v == 1 : v >= 128;
        else if (depth == 8)
            d = as == 1 ? (v == 1 ? 255 : 0) : v;
        else
            a = r = g = b = as == 1 ? (v == 1 ? 0 : 255) : 255 - v;
    }
    void writeColour(int as, std::uint32_t c) {
        const int red = c & 255, green = c >> 8 & 255, blue = c >> 16 & 255;
        if (depth == 1)
            d = red + green + blue < 382;
        else if (depth == 8)
            d = static_cast<int>(std::floor(255.5 - (red + green + blue) * 0.333));
        else
            r = red, g = green, b = blue, a = as == 32 ? static_cast<int>(c >> 24) : 255;
    }
};

void expectSame(const XCOffscreenCursor& cursor, const Reference& expected, const std::string& what) {
    EXPECT_EQ(cursor.Get1BitPixel(), expected.read(1)) << what;
    EXPECT_EQ(cursor.Get8BitPixel(), expected.read(8)) << what;
    EXPECT_EQ(cursor.Get24BitPixel(), expected.readColour(24)) << what;
    EXPECT_EQ(cursor.Get32BitPixel(), expected.readColour(32)) << what;
}

TEST(XCOffscreenCursor, EveryReadingAfterEveryWriting) {
    std::vector<std::uint32_t> colours = {0xFF7F7F7F, 0x00808080, 0x40FF0000, 0x00000002, 0xC8FFF500};
    std::mt19937 random(7);
    for (int i = 0; i < 300; ++i)
        colours.push_back(static_cast<std::uint32_t>(random()));
    for (const int depth : cnClassicDepths) {
        ClassicImage image(19, 3, depth);
        XCOffscreenCursor cursor(image.get(), 13, 1);
        Reference expected{depth};
        for (int v = 0; v < 256; ++v) {
            const auto value = static_cast<std::uint8_t>(v);
            expected.writeValue(1, v), cursor.Set1BitPixel(value);
            expectSame(cursor, expected, "1 bit " + std::to_string(v));
            expected.writeValue(8, v), cursor.Set8BitPixel(value);
            expectSame(cursor, expected, "8 bits " + std::to_string(v));
        }
        for (const std::uint32_t c : colours) {
            expected.writeColour(24, c), cursor.Set24BitPixel(c);
            expectSame(cursor, expected, "24 bits " + std::to_string(c));
            expected.writeColour(32, c), cursor.Set32BitPixel(c);
            expectSame(cursor, expected, "32 bits " + std::to_string(c));
        }
        cursor.Set1BitPixel(1);
        int marked = 0;
        for (const std::uint32_t pixel : image.pixels())
            marked += pixel != 0xFFFFFFFF;
        EXPECT_EQ(marked, 1) << depth;
    }
}

TEST(XCOffscreenCursor, WalksAndStaysHarmlessOutside) {
    for (const int depth : cnClassicDepths) {
        ClassicImage image(19, 5, depth);
        image.scribble(3);
        XCOffscreenCursor cursor(image.get(), -2, 2);
        for (int x = -2; x < 23; ++x, cursor.NextCursorX()) {
            EXPECT_EQ(cursor.CursorInOffscreen(), x >= 0 && x < 19);
            EXPECT_EQ(cursor.Get32BitPixel(), XCOffscreenCursor(image.get(), x, 2).Get32BitPixel()) << x;
        }
        for (int x = 23; x >= -2; --x, cursor.PrevCursorX())
            EXPECT_EQ(cursor.Get32BitPixel(), XCOffscreenCursor(image.get(), x, 2).Get32BitPixel()) << x;
        cursor.MoveCursor(4, 1);
        cursor.NextCursorY(), cursor.NextCursorY(), cursor.OffsetCursor(3, -1), cursor.PrevCursorY();
        EXPECT_EQ(cursor.Get32BitPixel(), image->Get32BitPixel(7, 1));
        const auto before = image.pixels();
        for (const auto& [x, y] : {std::pair{-1, 0}, {19, 0}, {0, -1}, {0, 5}, {cnHuge, cnHuge}, {-cnHuge - 1, 0}}) {
            cursor.MoveCursor(x, y);
            EXPECT_EQ(cursor.Get24BitPixel(), 0xFFFFFFu);
            EXPECT_EQ(cursor.Get1BitPixel(), 0);
            cursor.Set32BitPixel(0), cursor.Set1BitPixel(1), cursor.GetRReference() = 9;
            cursor.OffsetCursor(x, y), cursor.NextCursorX();
        }
        EXPECT_EQ(image.pixels(), before);
    }
    ClassicImage image(2, 1, 32, 0x11223344);
    const VXCHANNELREFERENCES channels = XCOffscreenCursor(image.get(), 1, 0).GetRGBAReference();
    EXPECT_EQ(channels.red | channels.green << 8 | channels.blue << 16 | channels.alpha << 24, 0x11223344);
    channels.blue = 0xAA;
    EXPECT_EQ(image->GetBaseAddress()[7], 0xAA);
}

TEST(XCOffscreen, ExtentOfWhatIsNotWhite) {
    for (const int depth : cnClassicDepths) {
        ClassicImage image(70, 40, depth);
        tagRECT extent = {1, 2, 3, 4};
        EXPECT_EQ(image->GetExtentRect(extent), 0);
        EXPECT_EQ(extent.right, 0);
        for (const auto& [x, y] : {std::pair{30, 9}, {12, 20}, {69, 15}, {40, 38}})
            image->Set24BitPixel(0, x, y);
        EXPECT_EQ(image->GetExtentRect(extent), 1);
        EXPECT_EQ(XCRect(extent), XCRect(12, 9, 70, 39)) << depth;
    }
}

} // namespace
