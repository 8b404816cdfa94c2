#include "ovwcmn/xcsimpleimage.h"

#include "support/scopes.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>

namespace {

using namespace ovw::test;

/// Bytes that a pixel takes in a simple image.
int bytesOf(int depth) { return depth <= 8 ? 1 : depth / 8; }

std::uint32_t valueAt(const XCSimpleImage& image, int depth, int x, int y) {
    const std::uint8_t* p = image.GetPixel(x, y);
    return depth <= 8 ? *p : storedPixel(p, 0, depth, 0, 0);
}

void scribble(TestImage& image, int x1, int x2, int y1, int y2) {
    std::mt19937 random(4);
    for (int y = y1; y < y2; ++y)
        image.visitRow(x1, x2, y, 1, [&](std::uint8_t* base, int column, int row, int) {
            const auto p = std::uint32_t(random());
            storePixel(base, image->GetBlockRowBytes(), image.depth(), column, row,
                       image.depth() <= 8 ? p & ((1u << image.depth()) - 1) : p);
        });
}

TEST(XCSimpleImage, CopiesEveryDepthAcrossBlocks) {
    TestStore store;
    for (int depth : {1, 2, 8, 16, 24, 32}) {
        TestImage image(store, depth, 515, 300);
        scribble(image, 200, 256, 100, 300);
        scribble(image, 256, 400, 0, 256); // four of six blocks
        scribble(image, 511, 515, 299, 300);
        image->DestroyBlockByXY(0, 0, 0);
        XCSimpleImage simple;
        simple.CopyFromOffscreen(image.get());
        XCAutoLockSimpleImage lock(&simple);
        EXPECT_EQ(simple.GetOrgBitCount(), depth);
        EXPECT_EQ(simple.GetBitCount(), std::max(depth, 8));
        EXPECT_EQ(simple.GetPixel(1, 2) - simple.GetPixel(0, 0), bytesOf(depth) * (2 * 515 + 1));
        ASSERT_EQ(simple.GetWidth(), 515);
        ASSERT_EQ(simple.GetHeight(), 300);
        XCVOffscreenAutoLock reading(image.get(), 0);
        for (int y = 0; y < 300; ++y)
            for (int x = 0; x < 515; ++x) {
                const bool exists = image->GetBlockExist(x, y);
                const std::uint32_t missing = depth == 32 ? 0x00FFFFFF : 0;
                std::uint32_t expected = missing;
                if (exists && image->MoveCursor(x, y))
                    expected = storedPixel(image->GetBaseAddress(), image->GetBlockRowBytes(), depth, x & 255, y & 255);
                ASSERT_EQ(valueAt(simple, depth, x, y), expected) << depth << ": " << x << ',' << y;
            }
        EXPECT_EQ(image->GetBlockExist(0), 0);
        EXPECT_EQ(image->GetBlockExist(2), 0); // reading created nothing
    }
}

TEST(XCSimpleImage, PixelsOutside) {
    TestStore store;
    TestImage image(store, 8, 3, 2);
    for (int i = 0; i < 6; ++i)
        image.setValue(i % 3, i / 3, std::uint32_t(10 + i));
    XCSimpleImage simple;
    simple.CopyFromOffscreen(image.get());
    XCAutoLockSimpleImage lock(&simple);
    constexpr int far = 2147483647;
    for (XCPoint p : {XCPoint(-1, 0), XCPoint(3, 0), XCPoint(0, -1), XCPoint(0, 2), XCPoint(-far - 1, far)})
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(simple.GetPixel(p.x, p.y)[i], 0);
    simple.SetProtectBorder(1, 0);
    EXPECT_EQ(*simple.GetPixel(-1, 0), 10);
    EXPECT_EQ(*simple.GetPixel(far, 1), 15);
    EXPECT_EQ(*simple.GetPixel(0, -1), 0);
    EXPECT_EQ(*simple.GetPixel(-1, 2), 0);
    simple.SetProtectBorder(0, 1);
    EXPECT_EQ(*simple.GetPixel(2, far), 15);
    EXPECT_EQ(*simple.GetPixel(3, 1), 0);
    simple.SetProtectBorder(1, 1);
    EXPECT_EQ(*simple.GetPixel(-far - 1, far), 13);
}

TEST(XCSimpleImage, ReplacesExactlyOneColour) {
    TestStore store;
    TestImage image(store, 32, 4, 1);
    constexpr std::uint32_t pixels[] = {0x80112233, 0x81112233, 0x80332211, 0x00FFFFFF};
    for (int x = 0; x < 4; ++x)
        image.setValue(x, 0, pixels[x]);
    XCSimpleImage simple;
    simple.CopyFromOffscreen(image.get());
    simple.ReplaceColor32Bit(0x80112233, 0x01020304);
    simple.ReplaceColor32Bit(0x00FFFFFF, 0xFF0000FF);
    XCAutoLockSimpleImage lock(&simple);
    EXPECT_EQ(valueAt(simple, 32, 0, 0), 0x01020304u);
    EXPECT_EQ(valueAt(simple, 32, 1, 0), pixels[1]);
    EXPECT_EQ(valueAt(simple, 32, 2, 0), pixels[2]);
    EXPECT_EQ(valueAt(simple, 32, 3, 0), 0xFF0000FFu);
}

TEST(XCSimpleImage, GoesBackIntoATiledImage) {
    TestStore store;
    _CREATEVMPARAM param{0, nullptr, 1, 20};
    xcCreateVirtualMemory(&param);
    for (int depth : {1, 2, 8, 16, 24, 32}) {
        TestImage image(store, depth, 300, 260);
        scribble(image, 0, 300, 0, 260);
        XCSimpleImage simple;
        EXPECT_EQ(simple.CopyToOffscreen(), nullptr);
        simple.CopyFromOffscreen(image.get());
        std::unique_ptr<XCVOffscreen> back(simple.CopyToOffscreen());
        ASSERT_NE(back, nullptr);
        ASSERT_EQ(back->GetDepth(), depth);
        XCSimpleImage again;
        again.CopyFromOffscreen(back.get());
        XCAutoLockSimpleImage lock(&simple), lockAgain(&again);
        ASSERT_EQ(std::memcmp(simple.GetPixel(0, 0), again.GetPixel(0, 0), std::size_t(300 * 260 * bytesOf(depth))), 0);
    }
    xcDestroyVirtualMemory();
}

TEST(XCSimpleImage, CopiesAreIndependent) {
    TestStore store;
    TestImage image(store, 32, 2, 1);
    image.setValue(0, 0, 0xFF010203);
    XCSimpleImage simple;
    simple.CopyFromOffscreen(image.get());
    simple.SetProtectBorder(1, 1);
    XCSimpleImage copy(simple);
    simple.ReplaceColor32Bit(0xFF010203, 0);
    XCAutoLockSimpleImage lock(&copy);
    EXPECT_EQ(valueAt(copy, 32, 0, 0), 0xFF010203u);
    EXPECT_EQ(copy.GetPixel(-5, 9), copy.GetPixel(0, 0));
}

TEST(XCSimpleImage, LockingNothingThrowsAndHoldsNothing) {
    XCSimpleImage empty;
    EXPECT_EQ(errorOf([&] { XCAutoLockSimpleImage lock(&empty); }), 0x20010008);
    XCAutoLockSimpleImage lock;
    lock.LockImage(nullptr);
    TestStore store;
    TestImage image(store, 8, 1, 1);
    image.setValue(0, 0, 9);
    empty.CopyFromOffscreen(image.get());
    lock.LockImage(&empty);
    {
        XCAutoLockSimpleImage inner(&empty);
        EXPECT_EQ(*empty.GetPixel(0, 0), 9);
    }
    EXPECT_EQ(*empty.GetPixel(0, 0), 9); // the outer lock still holds it
}

} // namespace
