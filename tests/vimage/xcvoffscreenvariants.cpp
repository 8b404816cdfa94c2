#include "ovwcmn/xcvoffscreen.h"

#include "pixelreference.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

using namespace ovw::test;

constexpr int cnWidths[] = {1, 3, 4, 5, 7, 8, 9, 255, 256, 257};
constexpr MonoRules cnRules[] = {{127, 128}, {0, 0}, {200, 50}, {255, 256}, {-1, 90}};
constexpr std::uint32_t cnInkColours[4] = {0, 0x40112233, 0xFF998877, 0x7F010203};

template <int Bits>
struct Depth {
    static constexpr int bits = Bits;
    static constexpr std::uint32_t mask = Bits == 32 ? 0xFFFFFFFF : (1u << Bits % 32) - 1;
};

/// Stored numbers that an image of some depth may hold: corner values first, random ones after them.
class Numbers {
public:
    explicit Numbers(std::uint32_t mask) : m_mask(mask) {}
    std::uint32_t next() {
        static constexpr std::uint32_t corners[] = {
            0, 0xFFFFFFFF, 0x00FFFFFF, 0xFF000000, 0x7F7F7F7F, 0x80808080, 0x7F808080, 0x807F7F7F,
            1, 2,          3,          0x0000FF00, 0x00FF0000, 0x000000FF, 0x00007F80, 0x0000807F};
        return (m_next < std::size(corners) ? corners[m_next++] : std::uint32_t(m_random())) & m_mask;
    }

private:
    std::uint32_t m_mask;
    std::size_t m_next = 0;
    std::mt19937 m_random{20};
};

Readings plainReadings(const XCVOffscreen& image) {
    return {image.Get1BitColor(),  image.Get2BitColor(),  image.Get8BitColor(),
            image.Get16BitColor(), image.Get24BitColor(), image.Get32BitColor(),
            image.Get8BitImage(),  image.Get24BitImage(), image.Get8BitMask()};
}

Readings fastReadings(const XCVOffscreen& image) {
    return {image.Get1BitColorFast(),  image.Get2BitColorFast(),  image.Get8BitColorFast(),
            image.Get16BitColorFast(), image.Get24BitColorFast(), image.Get32BitColorFast(),
            image.Get8BitImageFast(),  image.Get24BitImageFast(), image.Get8BitMaskFast()};
}

std::string text(const Readings& r) {
    char out[160];
    std::snprintf(out, sizeof out, "%x %x %x %x %x %x | %x %x %x", r.bit1, r.bit2, r.bit8, r.bit16, r.bit24, r.bit32,
                  r.image8, r.image24, r.mask8);
    return out;
}

std::uint32_t ownReading(const Readings& r, int depth) {
    switch (depth) {
    case 1: return r.bit1;
    case 2: return r.bit2;
    case 8: return r.bit8;
    case 16: return r.bit16;
    case 24: return r.bit24;
    default: return r.bit32;
    }
}

void setInkColours(XCVOffscreen& image) {
    for (int i = 1; i < 4; ++i)
        image.SetIndexColor(i, cnInkColours[i]);
}

std::vector<std::uint32_t> storedRow(const TestImage& image, int y) {
    std::vector<std::uint32_t> row;
    image.visitRow(0, image->GetWidth(), y, 0, [&](std::uint8_t* base, int column, int line, int) {
        row.push_back(storedPixel(base, image->GetBlockRowBytes(), image.depth(), column, line));
    });
    return row;
}

/// Writes `value` through the writer for `written` bits at the cursor.
void writeAs(XCVOffscreen& image, int written, std::uint32_t value) {
    switch (written) {
    case 1: return image.Set1BitColor(std::uint8_t(value));
    case 2: return image.Set2BitColor(std::uint8_t(value));
    case 8: return image.Set8BitColor(std::uint8_t(value));
    case 16: return image.Set16BitColor(value);
    case 24: return image.Set24BitColor(value);
    default: return image.Set32BitColor(value);
    }
}

template <class D>
class XCVOffscreenVariants : public testing::Test {
protected:
    TestStore m_store{16u << 20};
};

using Depths = testing::Types<Depth<1>, Depth<2>, Depth<8>, Depth<16>, Depth<24>, Depth<32>>;
TYPED_TEST_SUITE(XCVOffscreenVariants, Depths);

TYPED_TEST(XCVOffscreenVariants, EveryReaderGivesItsTableEntry) {
    constexpr int depth = TypeParam::bits;
    Numbers numbers(TypeParam::mask);
    for (int width : cnWidths) {
        TestImage image(this->m_store, depth, width, 2);
        setInkColours(*image.get());
        std::vector<std::uint32_t> row;
        for (int x = 0; x < width; ++x) {
            row.push_back(numbers.next());
            image.setValue(x, 1, row.back());
        }
        for (MonoRules rules : cnRules) {
            XCVOffscreenParamLock thresholds(image.get(), rules.trans, rules.bw);
            XCVOffscreenAutoLock lock(image.get(), 0, 1, 0);
            for (int x = 0; x < width; ++x, image->NextCursorX()) {
                const Readings expected = expectedReadings(depth, row[std::size_t(x)], rules, cnInkColours);
                ASSERT_EQ(text(plainReadings(*image.get())), text(expected)) << "x " << x << " of " << width;
                ASSERT_EQ(text(fastReadings(*image.get())), text(expected)) << "x " << x << " of " << width;
                ASSERT_EQ(image->GetColor(), ownReading(expected, depth));
                ASSERT_EQ(image->Get24BitColorAddress(image->GetCurrentAddress()), expected.bit24);
            }
        }
    }
}

// A byte in eight bits of coverage and one in grey or darkness: all of them, where the depth is shallow enough.
TYPED_TEST(XCVOffscreenVariants, ReadersAgreeOnEveryShallowPixel) {
    constexpr int depth = TypeParam::bits;
    if constexpr (depth <= 16) {
        TestImage image(this->m_store, depth, 256, 256);
        setInkColours(*image.get());
        XCVOffscreenAutoLock lock(image.get(), 0, 0, 1);
        for (std::uint32_t p = 0; p <= TypeParam::mask; ++p) {
            storePixel(image->GetBaseAddress(), image->GetBlockRowBytes(), depth, int(p & 255), int(p >> 8), p);
            image->MoveCursor(int(p & 255), int(p >> 8));
            const Readings expected = expectedReadings(depth, p, {}, cnInkColours);
            ASSERT_EQ(fastReadings(*image.get()), expected) << text(fastReadings(*image.get())) << "\n"
                                                            << text(expected);
        }
    } else {
        TestImage image(this->m_store, depth, 1, 1);
        XCVOffscreenAutoLock lock(image.get(), 0, 0, 1);
        for (std::uint32_t grey = 0; grey < 256; ++grey) {
            storePixel(image->GetBaseAddress(), image->GetBlockRowBytes(), depth, 0, 0, grey << 24 | grey * 0x010101);
            ASSERT_EQ(image->Get8BitImage(), 255 - grey);
        }
    }
}

TYPED_TEST(XCVOffscreenVariants, EveryWriterStoresItsTableEntry) {
    constexpr int depth = TypeParam::bits;
    for (int written : {1, 2, 8, 16, 24, 32}) {
        Numbers numbers(written <= 8 ? 0xFF : 0xFFFFFFFF);
        for (int width : cnWidths) {
            const MonoRules rules = cnRules[width % 3];
            TestImage image(this->m_store, depth, width, 1);
            XCVOffscreenParamLock thresholds(image.get(), rules.trans, rules.bw);
            XCVOffscreenAutoLock lock(image.get(), 0, 0, 1);
            std::vector<std::uint32_t> expected = storedRow(image, 0);
            // Every second pixel only, so that a writer which touches its neighbours is seen.
            for (int x = 0; x < width; x += 2) {
                const std::uint32_t value = numbers.next();
                expected[std::size_t(x)] = expectedStored(depth, written, value, rules);
                image->MoveCursor(x, 0);
                writeAs(*image.get(), written, value);
            }
            ASSERT_EQ(storedRow(image, 0), expected) << "Set" << written << "BitColor, width " << width;
        }
    }
}

TYPED_TEST(XCVOffscreenVariants, SetColorTakesOwnValuesAndMakeNativeColorMakesThem) {
    constexpr int depth = TypeParam::bits;
    TestImage image(this->m_store, depth, 4, 1);
    XCVOffscreenAutoLock lock(image.get(), 1, 0, 1);
    Numbers colours(0xFFFFFFFF);
    for (int i = 0; i < 2000; ++i) {
        const MonoRules rules = cnRules[i % 5];
        XCVOffscreenParamLock thresholds(image.get(), rules.trans, rules.bw);
        const std::uint32_t colour = colours.next();
        const std::uint32_t native = image->MakeNativeColor(colour);
        ASSERT_EQ(native, expectedNative(depth, colour, rules)) << std::hex << colour;
        image->SetColor(native);
        ASSERT_EQ(image.value(1, 0), expectedStored(depth, 32, colour, rules)) << std::hex << colour;
        image->SetColor(colour);
        ASSERT_EQ(image.value(1, 0), expectedStored(depth, depth, depth <= 8 ? colour & 0xFF : colour, rules));
    }
    EXPECT_EQ(image.value(2, 0), expectedStored(depth, depth, depth < 16 ? 0 : depth == 16 ? 0u : 0xFFFFFF, {}));
}

TYPED_TEST(XCVOffscreenVariants, ReadingWhatIsNotThereGivesDefaultsAndCreatesNothing) {
    constexpr int depth = TypeParam::bits;
    const Readings missing{0,
                           depth == 24 ? 2u : 0u,
                           0,
                           depth == 32 ? 0xFFFFFFFF : 0,
                           0x00FFFFFF,
                           0,
                           0,
                           0x00FFFFFF,
                           depth == 1 || depth == 8 || depth == 24 ? 255u : 0u};
    TestImage image(this->m_store, depth, 300, 300);
    XCVOffscreenAutoLock lock(image.get(), 0);
    for (XCPoint p : {XCPoint(0, 0), XCPoint(299, 299), XCPoint(256, 5), XCPoint(300, 0), XCPoint(0, 300),
                      XCPoint(-1, -1), XCPoint(-2147483647, 2147483647)}) {
        EXPECT_EQ(image->MoveCursor(p.x, p.y), nullptr);
        EXPECT_EQ(text(plainReadings(*image.get())), text(missing)) << p.x << ',' << p.y;
    }
    EXPECT_EQ(image->IsBlockExist(), 0);
    EXPECT_EQ(this->m_store.get()->GetUsedBlockCount(), 0u);
    EXPECT_EQ(image->Get8BitColorOnlyQuad(), 0u);
}

TYPED_TEST(XCVOffscreenVariants, RowStepsVisitEveryPixelOnceBothWays) {
    constexpr int depth = TypeParam::bits;
    constexpr int width = 600;
    TestImage image(this->m_store, depth, width, 3);
    XCVOffscreenAutoLock lock(image.get(), 0, 1, 1);
    std::vector<std::uint32_t> expected;
    Numbers colours(0xFFFFFFFF);
    for (int x = 0; x < width; ++x) {
        ASSERT_EQ(image->GetCursorPosX(), x);
        const std::uint32_t colour = colours.next();
        image->Set32BitColor(colour);
        expected.push_back(expectedStored(depth, 32, colour, {}));
        std::uint8_t* next = image->NextCursorX();
        ASSERT_EQ(next, image->GetCurrentAddress());
        ASSERT_EQ(next == nullptr, x == width - 1);
    }
    EXPECT_EQ(image->GetCurrentBlockIndex(), -1);
    EXPECT_EQ(storedRow(image, 1), expected);
    for (int x = width - 1; x >= 0; --x) {
        ASSERT_NE(image->PrevCursorX(), nullptr);
        ASSERT_EQ(image->Get32BitColor(),
                  expectedReadings(depth, expected[std::size_t(x)], {}, {0, 0xFF000000, 0xFFFFFFFF, 0xFF000000}).bit32)
            << x;
        ASSERT_EQ(image->GetCurrentBlockIndex(), x / 256);
    }
    EXPECT_EQ(image->PrevCursorX(), nullptr);
    EXPECT_EQ(image->GetBlockCount(nullptr, nullptr), 3);
}

TYPED_TEST(XCVOffscreenVariants, ColumnStepsVisitEveryPixelOnceBothWays) {
    constexpr int depth = TypeParam::bits;
    constexpr int height = 600;
    TestImage image(this->m_store, depth, 11, height);
    XCVOffscreenAutoLock lock(image.get(), 9, 0, 1);
    for (int y = 0; y < height; ++y, image->NextCursorY())
        image->Set1BitColor(std::uint8_t(y * y / 7 & 1));
    EXPECT_EQ(image->GetCurrentAddress(), nullptr);
    for (int y = height - 1; y >= 0; --y) {
        ASSERT_NE(image->PrevCursorY(), nullptr);
        ASSERT_EQ(image->Get1BitColor(), y * y / 7 & 1) << y;
        ASSERT_EQ(image.value(9, y), expectedStored(depth, 1, std::uint32_t(y * y / 7 & 1), {}));
    }
    EXPECT_EQ(image->PrevCursorY(), nullptr);
}

TYPED_TEST(XCVOffscreenVariants, FastestStepsAreTheAddressesOfTheLayout) {
    constexpr int depth = TypeParam::bits;
    TestImage image(this->m_store, depth, 256, 256);
    XCVOffscreenAutoLock lock(image.get(), 0, 0, 1);
    std::uint8_t* base = image->GetBaseAddress();
    for (int x = 0; x < 255; ++x) {
        image->Set1BitColor(1);
        ASSERT_EQ(image->GetCurrentAddress(), base + x * depth / 8);
        image->NextCursorXFastest();
    }
    for (int x = 255; x > 0; --x) {
        image->PrevCursorXFastest();
        ASSERT_EQ(image->GetCurrentAddress(), base + (x - 1) * depth / 8);
        ASSERT_EQ(image->Get1BitColorFast(), 1);
        image->Set1BitColor(0);
    }
    std::vector<std::uint32_t> expected(255, expectedStored(depth, 1, 0, {}));
    expected.push_back(depth >= 24 ? 0xFFFFFF : 0u); // never written
    EXPECT_EQ(storedRow(image, 0), expected);
    EXPECT_EQ(image->MoveCursorFastest(17, 9), base + 9 * image->GetBlockRowBytes() + 17 * depth / 8);
    EXPECT_EQ(image->SetCurrentCursorAddress(255, 255, base), base + 255 * image->GetBlockRowBytes() + 255 * depth / 8);
    EXPECT_EQ(image->SetCurrentCursorAddress(3, 3, nullptr), nullptr);
    EXPECT_EQ(image->SetCurrentCursorAddressFake32(3, 2), base + 2 * image->GetBlockRowBytes() + 12);
    EXPECT_EQ(image->SetCurrentCursorAddress(9, 2), base + 2 * image->GetBlockRowBytes() + 9 * depth / 8);
    EXPECT_EQ(image->GetCurrentAddress(), image->SetCurrentCursorAddress(9, 2, base));
    EXPECT_EQ(image->GetCursorPosX(), 17);
    EXPECT_EQ(image->MoveCursorFake32(3, 2), image->SetCurrentCursorAddressFake32(3, 2));
    EXPECT_EQ(image->GetCursorPosX(), 3);
}

TYPED_TEST(XCVOffscreenVariants, CopyCurrentColorTakesThePixelUnderTheOtherCursor) {
    constexpr int depth = TypeParam::bits;
    TestImage source(this->m_store, depth, 300, 1);
    TestImage target(this->m_store, depth, 20, 1);
    Numbers numbers(TypeParam::mask);
    XCVOffscreenAutoLock targetLock(target.get(), 0, 0, 1);
    XCVOffscreenAutoLock sourceLock(source.get(), 0, 0, 1);
    for (int i = 0; i < 40; ++i) {
        const std::uint32_t p = numbers.next();
        const std::uint32_t expected = depth == 2 && p == 1 ? 0 : p;
        source.setValue(i, 0, p);
        source->MoveCursor(i, 0);
        target->MoveCursor(i % 20, 0);
        target->CopyCurrentColor(source.get());
        ASSERT_EQ(target.value(i % 20, 0), expected) << std::hex << p;
        target->MoveCursor((i + 1) % 20, 0);
        target->CopyCurrentColorFast(source.get());
        ASSERT_EQ(target.value((i + 1) % 20, 0), expected) << std::hex << p;
    }
    source->MoveCursor(300, 0); // no pixel
    target->MoveCursor(0, 0);
    target->CopyCurrentColor(source.get());
    EXPECT_EQ(target.value(0, 0), depth == 24 ? 0xFFFFFFu : 0u);
}

TYPED_TEST(XCVOffscreenVariants, NewBlocksHoldTheClearColour) {
    constexpr int depth = TypeParam::bits;
    auto firstValue = [&](int byte, std::uint32_t colour, bool enable) {
        TestImage image(this->m_store, depth, 2, 1);
        if (byte >= 0) {
            image->SetClearColor(std::uint8_t(byte));
            image->SetClearColor(colour);
        }
        image->EnableClear(enable);
        XCVOffscreenAutoLock lock(image.get(), 0, 0, 1);
        if (!enable) {
            image->ClearBlock(nullptr);
        }
        return image.value(0, 0);
    };
    auto pick = [&](std::uint32_t one, std::uint32_t eight, std::uint32_t sixteen, std::uint32_t rgb,
                    std::uint32_t rgba) {
        return depth == 1    ? one
               : depth == 2  ? 0
               : depth == 8  ? eight
               : depth == 16 ? sixteen
               : depth == 24 ? rgb
                             : rgba;
    };
    EXPECT_EQ(firstValue(-1, 0, true), pick(0, 0, 0, 0xFFFFFF, 0x00FFFFFF));
    for (bool enable : {true, false}) {
        EXPECT_EQ(firstValue(0xAA, 0x80402010, enable), pick(1, 0xAA, 0x4080, 0x402010, 0x80402010));
        EXPECT_EQ(firstValue(0x55, 0xFFFFFFFF, enable), pick(0, 0x55, 0xFFFF, 0xFFFFFF, 0xFFFFFFFF));
        EXPECT_EQ(firstValue(0, 0, enable), pick(0, 0, 0, 0, 0));
    }
}

TEST(XCVOffscreenVariants, AnImageWithoutADepthAnswersZeroAndDoesNothing) {
    TestStore store;
    XCVOffscreen image;
    image.Create(store.get(), 10, 10, 72.0);
    using Reader8 = std::uint8_t (XCVOffscreenInterface::*)() const;
    using Reader32 = std::uint32_t (XCVOffscreenInterface::*)() const;
    using I = XCVOffscreenInterface;
    for (const Reader8 read :
         {&I::Get1BitColor, &I::Get1BitColorFast, &I::Get2BitColor, &I::Get2BitColorFast, &I::Get8BitColor,
          &I::Get8BitColorFast, &I::Get8BitImage, &I::Get8BitImageFast, &I::Get8BitMask, &I::Get8BitMaskFast})
        EXPECT_EQ((image.*read)(), 0);
    for (const Reader32 read :
         {&I::GetColor, &I::Get16BitColor, &I::Get16BitColorFast, &I::Get24BitColor, &I::Get24BitColorFast,
          &I::Get32BitColor, &I::Get32BitColorFast, &I::Get24BitImage, &I::Get24BitImageFast})
        EXPECT_EQ((image.*read)(), 0u);
    using Step = std::uint8_t* (XCVOffscreenInterface::*)();
    for (const Step step : {&I::NextCursorX, &I::NextCursorXFastest, &I::PrevCursorX, &I::PrevCursorXFastest})
        EXPECT_EQ((image.*step)(), nullptr);
    int x1 = 0, x2 = 3;
    EXPECT_EQ(image.CheckLinePixel(0, x1, x2), -1);
    EXPECT_EQ(image.MakeNativeColor(0xFFFFFFFF) + image.Get24BitColorAddress(nullptr), 0u);
    EXPECT_EQ(image.SearchLineRowForPolygon(0, 9), 0);
    for (const auto write : {&I::Set1BitColor, &I::Set2BitColor, &I::Set8BitColor})
        (image.*write)(255);
    for (const auto write : {&I::SetColor, &I::Set16BitColor, &I::Set24BitColor, &I::Set32BitColor})
        (image.*write)(0xFFFFFFFF);
    image.RectFill(image.GetRect(), 0, 0xFFFFFFFF, 0);
    image.FillBlock(1, 0xFFFFFFFF);
    image.DrawSimpleLine(0, 0, 0xFFFFFFFF);
    image.DrawSimpleSegment(1, 0, 0, 9, 0xFFFFFFFF);
    image.FillLineRow(0, 9, 0, 0xFFFFFFFF, nullptr);
    image.FillLineRowForPolygon(0, 9, 0xFFFFFFFF, 0, nullptr, 0, nullptr, 0);
    EXPECT_FALSE(image.IsBlockExist());
}

TEST(XCVOffscreenVariants, TwoBitWritersKeepTheNeighboursInTheByte) {
    TestStore store;
    TestImage image(store, 2, 8, 1);
    XCVOffscreenAutoLock lock(image.get(), 0, 0, 1);
    image->GetBaseAddress()[0] = 0xFF;
    image->MoveCursor(1, 0);
    image->Set2BitColor(1);
    EXPECT_EQ(image->GetBaseAddress()[0], 0xCF);
    image->MoveCursor(3, 0);
    image->Set24BitColor(0x00FFFFFF);
    EXPECT_EQ(image->GetBaseAddress()[0], 0xCE);
    image->Set24BitColor(0);
    EXPECT_EQ(image->Get2BitColor(), 3);
}

TEST(XCVOffscreenVariants, QuadsAreFourBytesInMachineOrder) {
    TestStore store;
    TestImage image(store, 8, 16, 1);
    XCVOffscreenAutoLock lock(image.get(), 4, 0, 1);
    image->Set8BitColorOnlyQuad(0x44332211);
    EXPECT_EQ(image.value(4, 0), 0x11u);
    EXPECT_EQ(image.value(7, 0), 0x44u);
    EXPECT_EQ(image->Get8BitColorOnlyQuad(), 0x44332211u);
}

TEST(XCVOffscreenVariants, ParamLockEndsWithTheOldThresholds) {
    TestStore store;
    TestImage image(store, 16, 1, 1);
    image.setValue(0, 0, stored16(1, 200));
    XCVOffscreenAutoLock lock(image.get(), 0, 0, 0);
    {
        XCVOffscreenParamLock thresholds(image.get(), 0, 201);
        EXPECT_EQ(image->Get1BitColor(), 1);
        EXPECT_EQ(image->Get2BitColor(), 3);
        thresholds.Unlock();
        EXPECT_EQ(image->Get1BitColor(), 0);
        thresholds.Lock(image.get(), 0, 200);
        EXPECT_EQ(image->Get2BitColor(), 2);
    }
    EXPECT_EQ(image->Get2BitColor(), 0);
    EXPECT_EQ(image->GetMonoTransThreshold(), 127);
    EXPECT_EQ(image->GetMonoBWThreshold(), 128);
}

TEST(XCVOffscreenVariants, DefaultIndexColours) {
    for (int depth : {1, 2, 8, 16, 24, 32}) {
        std::unique_ptr<XCVOffscreen> image(XCVOffscreen::CreateOffscreen(depth));
        EXPECT_EQ(image->GetDepth(), depth);
        const bool hasInk = depth == 1 || depth == 8;
        EXPECT_EQ(image->GetIndexColor(1), hasInk ? 0xFF000000 : 0) << depth;
        EXPECT_EQ(image->GetIndexColor(2), depth == 2 ? 0xFFFFFFFF : 0) << depth;
        EXPECT_EQ(image->GetIndexColor(3), depth == 2 ? 0xFF000000 : 0) << depth;
        EXPECT_EQ(image->GetIndexColor(256), 0u);
        EXPECT_EQ(image->GetIndexColor(-1), 0u);
        image->SetIndexColor(256, 7);
    }
    for (int depth : {0, 3, 4, 64, -8})
        EXPECT_EQ(XCVOffscreen::CreateOffscreen(depth), nullptr);
    XCVOffscreen::DeleteOffscreen(nullptr);
}

} // namespace
