#include "ovwcmn/xcvoffscreensettings.h"

#include "ovwcmn/xcvoffscreen.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <bit>
#include <string_view>

namespace {

using namespace ovw::test;
using Settings = XCVOffscreenSettings;

TEST(XCVOffscreenSettings, ColoursToSmallValues) {
    struct Case {
        std::uint32_t colour;
        int one, two, eight;
    };
    for (Case c :
         {Case{0, 0, 0, 255}, Case{0x7F7F7F7F, 0, 0, 128}, Case{0x80000000, 1, 3, 255}, Case{0xFF000000, 1, 3, 255},
          Case{0xFF7F7F7F, 1, 3, 128}, Case{0xFF800000, 1, 2, 255}, Case{0xFF008000, 1, 2, 255},
          Case{0xFF000080, 1, 2, 127}, Case{0x7FFFFFFF, 1, 0, 0}, Case{0x00000080, 1, 0, 127}}) {
        EXPECT_EQ(Settings::VXCOLORREFtoBYTE1(c.colour), c.one) << std::hex << c.colour;
        EXPECT_EQ(Settings::VXCOLORREFtoBYTE2(c.colour), c.two) << std::hex << c.colour;
        EXPECT_EQ(Settings::VXCOLORREFtoBYTE8(c.colour), c.eight) << std::hex << c.colour;
    }
    EXPECT_EQ(Settings::BYTE1toVXCOLORREF(0), 0x00FFFFFFu);
    EXPECT_EQ(Settings::BYTE1toVXCOLORREF(7), 0u);
    EXPECT_EQ(Settings::BYTE8toVXCOLORREF(0), 0xFFFFFFFFu);
    EXPECT_EQ(Settings::BYTE8toVXCOLORREF(0xF0), 0xFF0F0F0Fu);
}

TEST(XCVOffscreenSettings, MarginsDoNotWrapAround) {
    EXPECT_TRUE(Settings::IsEqualB(250, 255, 5));
    EXPECT_FALSE(Settings::IsEqualB(249, 255, 5));
    EXPECT_TRUE(Settings::IsEqualB(7, 2, 5));
    EXPECT_FALSE(Settings::IsEqualB(8, 2, 5));
    EXPECT_TRUE(Settings::IsEqualB(0, 255, 300));
    EXPECT_FALSE(Settings::IsEqualB(9, 9, -1));
    EXPECT_TRUE(Settings::IsEqualRGB(0x01405060, 0xFF3F5161, 1));
    EXPECT_FALSE(Settings::IsEqualRGB(0x405060, 0x3E5161, 1));
    EXPECT_FALSE(Settings::IsEqualRGB(0x405060, 0x3F5261, 1));
    EXPECT_FALSE(Settings::IsEqualRGB(0x405060, 0x3F5162, 1));
}

TEST(XCVOffscreenSettings, TransparentColoursAreEqual) {
    EXPECT_TRUE(Settings::IsEqualRGBANoMargin(0, 0x00123456));
    EXPECT_FALSE(Settings::IsEqualRGBANoMargin(0, 0xFF000000));
    EXPECT_TRUE(Settings::IsEqualRGBANoMargin(0xFF123456, 0xFF123456));
    EXPECT_FALSE(Settings::IsEqualRGBANoMargin(0xFF123456, 0xFE123456));

    EXPECT_TRUE(Settings::IsEqualRGBA(0x00123456, 0x03FFFFFF, 3));
    EXPECT_TRUE(Settings::IsEqualRGBA(0x03FFFFFF, 0x00123456, 3));
    EXPECT_FALSE(Settings::IsEqualRGBA(0x04FFFFFF, 0x00123456, 3));
    EXPECT_TRUE(Settings::IsEqualRGBA(0x80102030, 0x82112030, 2));
    EXPECT_FALSE(Settings::IsEqualRGBA(0x80102030, 0x80102034, 3));
}

std::uint8_t bayer(int row, int column) {
    unsigned value = 0;
    for (int i = 0; i < 4; ++i)
        value |= unsigned((row ^ column) >> i & 1) << (7 - 2 * i) | unsigned(row >> i & 1) << (6 - 2 * i);
    return std::uint8_t(value);
}

TEST(XCVOffscreenDither, TheTableIsTheBayerMatrix) {
    const std::uint8_t* table = XCVOffscreen::GetDitherTable256();
    for (int row = 0; row < 16; ++row)
        for (int column = 0; column < 16; ++column)
            ASSERT_EQ(table[row * 16 + column], bayer(row, column)) << row << ',' << column;
}

TEST(XCVOffscreenDither, Levels255) {
    for (int level : {-5, 0, 1, 2, 127, 128, 254, 255, 300})
        for (int y = -17; y < 20; ++y)
            for (int x = -17; x < 20; ++x) {
                const bool on = level >= 255 || (level > 0 && bayer(y & 15, x & 15) <= level);
                ASSERT_EQ(XCVOffscreen::GetDitherValue255(level, x, y), on) << level << ' ' << x << ',' << y;
            }
}

// Pixels of the 4 x 4 patterns, row by row, most significant bit first.
constexpr std::uint16_t cnFine[17] = {0x0000, 0x8000, 0x8020, 0xA020, 0xA0A0, 0xA4A0, 0xA4A1, 0xA5A1, 0xA5A5,
                                      0xE5A5, 0xE5B5, 0xF5B5, 0xF5F5, 0xFDF5, 0xFDF7, 0xFFF7, 0xFFFF};

int fine(int level, int row, int column) { return cnFine[level] >> (15 - 4 * (row & 3) - (column & 3)) & 1; }

TEST(XCVOffscreenDither, Levels16) {
    for (int level = 0; level <= 16; ++level) {
        ASSERT_EQ(std::popcount(cnFine[level]), level);
        for (int y = -5; y < 9; ++y)
            for (int x = -5; x < 9; ++x)
                ASSERT_EQ(XCVOffscreen::GetDitherValue16(level, x, y), fine(level, y, x))
                    << level << ' ' << x << ',' << y;
    }
    EXPECT_EQ(XCVOffscreen::GetDitherValue16(-1, 0, 0), 0);
    EXPECT_EQ(XCVOffscreen::GetDitherValue16(17, 3, 3), 1);
}

constexpr std::string_view cnCoarse[16] = {
    "0222222222222222", "1222222222022222", "1202222222122222", "1212222202122222",
    "1212202212122222", "1212212212122220", "1212212012122221", "1212212112122021",
    "1012212112122121", "1112212112102121", "1110212112112121", "1111212110112121",
    "1111012111112121", "1111112111112101", "1111110111112111", "1111111111110111"};

TEST(XCVOffscreenDither, CoarseAndFineLevelsAtTheCursor) {
    TestStore store;
    TestImage image(store, 1, 40, 40);
    XCVOffscreenAutoLock lock(image.get(), 0, 0, 0);
    for (int y = 0; y < 40; y += 3)
        for (int x = 0; x < 40; ++x) {
            image->MoveCursor(x, y);
            for (int level = 0; level < 256; level += x == 5 ? 1 : 7) {
                const char coarse = cnCoarse[level / 16][std::size_t(x / 4 % 4 * 4 + y / 4 % 4)];
                const int on = coarse == '0' ? fine(level % 16, x, y) : coarse == '1';
                ASSERT_EQ(image->GetDitherValue(level), on) << level << ' ' << x << ',' << y;
            }
            ASSERT_EQ(image->GetDitherValue16(7), fine(7, y, x));
            ASSERT_EQ(image->GetDitherValue255(99), bayer(y & 15, x & 15) <= 99);
        }
    image->MoveCursor(-1, -1);
    EXPECT_EQ(image->GetDitherValue(-1), image->GetDitherValue(0));
    EXPECT_EQ(image->GetDitherValue(256), image->GetDitherValue(255));
    EXPECT_EQ(image->GetDitherValue16(16), 1);
}

TEST(XCVOffscreenSettings, OverloadsOfSetClearColorFollowTheDepth) {
    XCVOffscreen8Bit density;
    XCVOffscreen32Bit colour;
    density.SetClearColor(0x90);
    colour.SetClearColor(0x123456);
    std::uint8_t byte = 0;
    std::uint32_t packed = 0;
    density.GetClearColor(&byte);
    colour.GetClearColor(&packed);
    EXPECT_EQ(byte, 0x90);
    EXPECT_EQ(packed, 0x123456u);
    colour.SetClearColor(0xFF654321ul);
    colour.GetClearColor(&packed);
    EXPECT_EQ(packed, 0xFF654321u);
}

} // namespace
