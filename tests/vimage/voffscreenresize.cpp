#include "ovwcmn/xcvoffscreen.h"

#include "support/scopes.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

using namespace ovw::test;

std::string text(const XCRect& r) {
    return std::to_string(r.left) + ' ' + std::to_string(r.top) + ' ' + std::to_string(r.right) + ' ' +
           std::to_string(r.bottom);
}

/// Width, height and offset.
std::string shape(const XCVOffscreen* image) {
    return std::to_string(image->GetWidth()) + 'x' + std::to_string(image->GetHeight()) + " at " +
           std::to_string(image->GetOffset().x) + ',' + std::to_string(image->GetOffset().y);
}

class XCVOffscreenResize : public testing::Test {
protected:
    TestStore m_store{64u << 20};
};

TEST_F(XCVOffscreenResize, GrowsByWholeBlocksLeftAndAbove) {
    TestImage image(m_store, 32, 256, 256);
    image.setValue(3, 4, 0xFF123456);
    XCRect out;
    EXPECT_EQ(image->AllocateRect(XCRect(-10, -300, 20, 20), &out), 1);
    EXPECT_EQ(shape(image.get()), "512x768 at -256,-512");
    EXPECT_EQ(text(out), "256 512 768 1280");
    EXPECT_EQ(image->GetBlockExist(2 * 2 + 1), 1);
    EXPECT_EQ(image->CheckBlockEdited(2 * 2 + 1), 1);
    EXPECT_EQ(image.value(256 + 3, 512 + 4), 0xFF123456u);
    EXPECT_EQ(m_store.get()->GetUsedBlockCount(), 1u);
}

TEST_F(XCVOffscreenResize, GrowsByPixelsRightAndBelow) {
    TestImage image(m_store, 8, 300, 300);
    image.setValue(299, 299, 77);
    image->ResetBlockEdited(3);
    XCRect out;
    EXPECT_EQ(image->AllocateRect(XCRect(0, 0, 513, 301), &out), 1);
    EXPECT_EQ(shape(image.get()), "513x301 at 0,0");
    EXPECT_EQ(image->GetHBlockCount(), 3);
    EXPECT_EQ(image->GetVBlockCount(), 2);
    EXPECT_EQ(text(out), "0 0 513 301");
    EXPECT_EQ(image.value(299, 299), 77u);
    EXPECT_EQ(image->CheckBlockEdited(4), 0);
}

TEST_F(XCVOffscreenResize, ARectangleInsideChangesNothing) {
    TestImage image(m_store, 8, 300, 200);
    for (XCRect inside : {XCRect(0, 0, 300, 200), XCRect(5, 5, 6, 6), XCRect(-5, -5, -5, -5), XCRect(900, 9, 10, 20)}) {
        XCRect out;
        image->ResetEditLockChecker();
        EXPECT_EQ(image->AllocateRect(inside, &out), 1);
        EXPECT_EQ(text(out), "0 0 300 200");
        EXPECT_EQ(shape(image.get()), "300x200 at 0,0");
        EXPECT_EQ(image->GetEditLockChecker(), 0);
    }
    EXPECT_EQ(image->AllocateRect(XCRect(0, 0, 301, 1), nullptr), 1);
    EXPECT_EQ(image->GetEditLockChecker(), 1);
}

TEST_F(XCVOffscreenResize, ExtremeRectanglesAreRefusedWhole) {
    TestImage image(m_store, 8, 300, 200);
    constexpr int far = 2147483647;
    for (XCRect rect :
         {XCRect(-far - 1, 0, 1, 1), XCRect(-far, -far, far, far), XCRect(0, 0, far, far), XCRect(-5, 0, far, 1)}) {
        EXPECT_EQ(errorOf([&] { image->AllocateRect(rect, nullptr); }), 0x20010008) << text(rect);
        EXPECT_EQ(shape(image.get()), "300x200 at 0,0");
    }
}

// What was painted beyond the edge of an image by whole-block work must not come to light when the image grows.
TEST_F(XCVOffscreenResize, NewAreaIsClear) {
    for (int depth : {1, 2, 8, 16, 24, 32}) {
        TestImage image(m_store, depth, 100, 70);
        {
            XCVOffscreenAutoLock lock(image.get(), 0, 0, 1);
            std::memset(image->GetBaseAddress(), 0xD7, std::size_t(image->GetBlockRowBytes()) * 256);
        }
        const std::uint32_t inside = image.value(99, 69);
        image->AllocateRect(XCRect(0, 0, 200, 70), nullptr);
        image->AllocateRect(XCRect(0, 0, 201, 300), nullptr);
        const std::uint32_t clear = depth >= 24 ? 0x00FFFFFF : 0;
        for (XCPoint p : {XCPoint(100, 0), XCPoint(101, 69), XCPoint(200, 255), XCPoint(0, 70), XCPoint(99, 255)})
            EXPECT_EQ(image.value(p.x, p.y), clear) << depth << ": " << p.x << ',' << p.y;
        EXPECT_EQ(image.value(99, 69), inside);
    }
}

TEST_F(XCVOffscreenResize, DeallocateBlockRemovesOneColumnOrRow) {
    struct Case {
        DEALLOCATE_BLOCK_TYPE type;
        const char* shape;
        int left; // blocks that existed in the four corners of the 3 x 3 grid
    };
    for (Case c : {Case{DEALLOCATE_LEFT, "344x600 at 256,0", 2}, Case{DEALLOCATE_TOP, "600x344 at 0,256", 2},
                   Case{DEALLOCATE_RIGHT, "512x600 at 0,0", 2}, Case{DEALLOCATE_BOTTOM, "600x512 at 0,0", 2}}) {
        TestImage image(m_store, 8, 600, 600);
        for (XCPoint p : {XCPoint(0, 0), XCPoint(599, 0), XCPoint(0, 599), XCPoint(599, 599)})
            image.setValue(p.x, p.y, 9);
        image.setValue(256, 256, 5);
        EXPECT_EQ(image->DeallocateBlock(c.type), 1);
        EXPECT_EQ(shape(image.get()), c.shape);
        EXPECT_EQ(m_store.get()->GetUsedBlockCount(), std::uint32_t(c.left + 1));
        EXPECT_EQ(image.value(c.type == DEALLOCATE_LEFT ? 0 : 256, c.type == DEALLOCATE_TOP ? 0 : 256), 5u);
        EXPECT_EQ(image->DeallocateBlock(DEALLOCATE_BLOCK_TYPE(4)), 0);
        EXPECT_EQ(image->DeallocateBlock(c.type), 1);
        EXPECT_EQ(image->DeallocateBlock(c.type), 0);
    }
    TestImage narrow(m_store, 8, 256, 600);
    EXPECT_EQ(narrow->DeallocateBlock(DEALLOCATE_LEFT), 0);
    EXPECT_EQ(narrow->DeallocateBlock(DEALLOCATE_RIGHT), 0);
    EXPECT_EQ(shape(narrow.get()), "256x600 at 0,0");
}

TEST_F(XCVOffscreenResize, DeallocateRectRemovesWholeBlocksAround) {
    struct Case {
        int width, height;
        XCRect rect;
        int result;
        const char* shape;
        int offsetX, offsetY;
    };
    for (const Case& c : {Case{1024, 1024, {300, 600, 400, 700}, 1, "256x256 at 256,512", 256, 512},
                          Case{1024, 256, {255, 0, 769, 256}, 1, "1024x256 at 0,0", 0, 0},
                          Case{1024, 256, {256, 0, 768, 256}, 1, "512x256 at 256,0", 256, 0},
                          // The ragged edge is counted once: one of two columns goes.
                          Case{522, 100, {0, 0, 100, 100}, 1, "512x100 at 0,0", 0, 0},
                          Case{600, 256, {5000, 0, 6000, 256}, 0, "88x256 at 512,0", 512, 0}}) {
        TestImage image(m_store, 1, c.width, c.height);
        XCPoint offset(9, 9);
        EXPECT_EQ(image->DeallocateRect(c.rect, offset), c.result) << text(c.rect);
        EXPECT_EQ(shape(image.get()), c.shape);
        EXPECT_EQ(offset.x, c.offsetX);
        EXPECT_EQ(offset.y, c.offsetY);
    }
}

TEST_F(XCVOffscreenResize, CursorOfALockedImageFollowsTheGrid) {
    TestImage image(m_store, 8, 600, 256);
    XCVOffscreenAutoLock lock(image.get(), 300, 5, 1);
    image->Set8BitColor(42);
    std::uint8_t* address = image->GetCurrentAddress();
    image->AllocateRect(XCRect(-1, 0, 1, 1), nullptr);
    // The cursor's position names another pixel now.
    EXPECT_EQ(image->MoveCursor(300 + 256, 5), address);
    EXPECT_EQ(image->Get8BitColor(), 42);
    EXPECT_EQ(image->GetCurrentBlockIndex(), 2);
    image->DeallocateBlock(DEALLOCATE_LEFT);
    image->MoveCursor(300, 5);
    EXPECT_EQ(image->Get8BitColor(), 42);
    EXPECT_EQ(image->DestroyBlock(1, 0), 1);
    EXPECT_EQ(image->GetCurrentAddress(), nullptr);
    EXPECT_EQ(image->GetBaseAddress(), nullptr);
    EXPECT_EQ(image->Get8BitColor(), 0);
    image->MoveCursor(0, 0);
    image->Set8BitColor(1);
    EXPECT_EQ(image->DestroyAllBlock(), 1);
    EXPECT_EQ(image->GetCurrentAddress(), nullptr);
    image->MoveCursor(299, 0);
    image->Set8BitColor(7);
    EXPECT_EQ(image.value(299, 0), 7u);
}

// Random growing and shrinking against a plain picture in the caller's coordinates.
TEST_F(XCVOffscreenResize, PixelsKeepTheirPlaceInTheCallersCoordinates) {
    std::mt19937 random(7);
    auto pick = [&](int low, int high) { return low + int(random() % unsigned(high - low)); };
    TestImage image(m_store, 8, 300, 300);
    std::vector<std::uint8_t> picture(1 << 24); // 4096 x 4096, its middle at (0, 0)
    auto plain = [&](int x, int y) -> std::uint8_t& {
        return picture[std::size_t(y + 2048) << 12 | std::size_t(x + 2048)];
    };
    for (int step = 0; step < 150; ++step) {
        const XCPoint offset = image->GetOffset();
        for (int i = 0; i < 5; ++i) {
            const int x = pick(0, image->GetWidth()), y = pick(0, image->GetHeight());
            image.setValue(x, y, std::uint32_t(1 + i));
            plain(x + offset.x, y + offset.y) = std::uint8_t(1 + i);
        }
        if (step % 3) {
            const int left = offset.x < -1200 ? 0 : pick(-300, 1), top = offset.y < -1200 ? 0 : pick(-300, 1);
            if (image->GetWidth() + image->GetHeight() < 3000)
                image->AllocateRect(XCRect(left, top, pick(1, 1400), pick(1, 1400)), nullptr);
        } else if (offset.x < 300 && offset.y < 300) {
            image->DeallocateBlock(DEALLOCATE_BLOCK_TYPE(pick(0, 4)));
        }
        const XCPoint now = image->GetOffset();
        for (int y = -2048; y < 2048; ++y) // what was cut off is gone
            if (y < now.y || y >= now.y + image->GetHeight())
                std::fill_n(&plain(-2048, y), 4096, std::uint8_t(0));
            else {
                std::fill_n(&plain(-2048, y), now.x + 2048, std::uint8_t(0));
                const int right = now.x + image->GetWidth();
                std::fill_n(&plain(right, y), 2048 - right, std::uint8_t(0));
            }
        for (int i = 0; i < 20; ++i) {
            const int y = pick(0, image->GetHeight());
            image.visitRow(0, image->GetWidth(), y, 0, [&](std::uint8_t* base, int column, int row, int x) {
                const int value = base ? base[row * 256 + column] : 0;
                ASSERT_EQ(value, plain(x + now.x, y + now.y)) << "step " << step << ": " << x << ',' << y;
            });
        }
        if (HasFatalFailure())
            return;
    }
}

} // namespace
