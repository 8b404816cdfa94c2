#include "offscreen/classictest.h"
#include "ovwcmn/xcfont.h"
#include "ovwcmn/xcoffscreen.h"
#include "support/scopes.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace ovw::test;

/// Every character as a box of 4 x 6 pixels, whose right column is covered by half, with a column between.
int drawBoxes(const char* text, const XCFont&, void (*take)(void*, const VXTEXTBITMAP&), void* context) {
    const int width = static_cast<int>(std::strlen(text)) * 5;
    std::vector<std::uint8_t> coverage(static_cast<std::size_t>(width) * 8 + 1);
    for (int y = 1; y < 7; ++y)
        for (int x = 0; x < width; ++x)
            coverage[static_cast<std::size_t>(y * width + x)] = x % 5 < 3 ? 255 : x % 5 == 3 ? 127 : 0;
    take(context, {width, 8, width, coverage.data()});
    return 1;
}

int drawNothing(const char*, const XCFont&, void (*)(void*, const VXTEXTBITMAP&), void*) { return 0; }

class TextProcScope {
public:
    explicit TextProcScope(VXTEXTPROC proc) { xcSetTextProc(proc); }
    ~TextProcScope() { xcSetTextProc(nullptr); }
    TextProcScope(const TextProcScope&) = delete;
};

TEST(OffscreenText, StandsWhereTheFormatSays) {
    const TextProcScope scope(drawBoxes);
    XCFont font;
    struct {
        int format, left, top; // of the first box
    } const cases[] = {
        {DT_LEFT, 10, 6}, {DT_CENTER, 27, 6}, {DT_RIGHT, 45, 6}, {DT_VCENTER, 10, 17}, {DT_BOTTOM, 10, 29}};
    for (const int depth : cnClassicDepths)
        for (const auto& c : cases) {
            ClassicImage image(70, 50, depth);
            image->SetForeColor(0);
            EXPECT_EQ(image->DrawString("a", {10, 5, 50, 36}, font, c.format), 8);
            tagRECT extent;
            image->GetExtentRect(extent);
            EXPECT_EQ(XCRect(extent), XCRect(c.left, c.top, c.left + (depth == 1 ? 3 : 4), c.top + 6)) << depth;
            EXPECT_EQ(image->Get24BitPixel(c.left, c.top), 0u);
            EXPECT_EQ(image->Get24BitPixel(c.left + 3, c.top) & 255, depth == 1 ? 255u : 128u) << depth;
        }
}

TEST(OffscreenText, LinesClipsAndTransparentGround) {
    const TextProcScope scope(drawBoxes);
    XCFont font;
    ClassicImage image(70, 50, 32, 0x00FFFFFF);
    image->SetForeColor(0x000000FF);
    EXPECT_EQ(image->DrawString("a\r\nbc\n\rd", {2, 3, 8, 30}, font, 0), 32); // an empty third line
    EXPECT_EQ(image->Get32BitPixel(2, 4), 0xFF0000FFu);
    EXPECT_EQ(image->Get32BitPixel(5, 4), 0x7F0000FFu); // its own colour, by alpha
    EXPECT_EQ(image->Get32BitPixel(7, 12), 0xFF0000FFu);
    EXPECT_EQ(image->Get32BitPixel(8, 12), 0x00FFFFFFu); // beyond the rectangle
    EXPECT_EQ(image->Get32BitPixel(2, 28), 0xFF0000FFu);
    EXPECT_EQ(image->Get32BitPixel(2, 30), 0x00FFFFFFu);
    constexpr int far = 2147483647;
    EXPECT_EQ(image->DrawString("aaa", {-far, -far, far, far}, font, DT_CENTER | DT_VCENTER), 8);
    EXPECT_EQ(image->DrawString("", {0, 0, 70, 50}, font, 0), 0);
    EXPECT_EQ(image->DrawString(nullptr, {0, 0, 70, 50}, font, 0), 0);
    const auto before = image.pixels();
    xcSetTextProc(drawNothing);
    EXPECT_EQ(image->DrawString("a", {0, 0, 70, 50}, font, 0), 0);
    EXPECT_EQ(image.pixels(), before);
}

TEST(OffscreenText, SystemFonts) {
    ClassicImage image(200, 60, 8);
    XCFont none("No Such Family 42", 20);
    EXPECT_EQ(image->DrawString("W", {0, 0, 200, 60}, none, 0), 0);
    XCFont usual("", 24);
    const int height = image->DrawString("Will", {0, 0, 200, 60}, usual, 0);
    if (height == 0)
        GTEST_SKIP() << "this machine has no fonts";
    EXPECT_GE(height, 24);
    tagRECT extent;
    ASSERT_EQ(image->GetExtentRect(extent), 1);
    EXPECT_GT(extent.right - extent.left, 24);
    EXPECT_LT(extent.right - extent.left, 120);
    ClassicImage twice(200, 60, 8);
    twice->DrawString("Will\xFF", {0, 0, 200, 60}, usual, 0); // a byte that the code page lacks
    EXPECT_EQ(twice->Get8BitPixel(extent.left + 2, extent.top + 2),
              image->Get8BitPixel(extent.left + 2, extent.top + 2));
    XCFont slanted("", 24, XCFont::cnBold | XCFont::cnItalic);
    ClassicImage bold(200, 60, 8);
    EXPECT_GT(bold->DrawString("Will", {0, 0, 200, 60}, slanted, 0), 0);
    EXPECT_NE(bold.pixels(), image.pixels());
}

} // namespace
