#include "ovwcmn/xcvoffscreenlock.h"

#include "ovwcmn/xcswap.h"
#include "ovwcmn/xcvoffscreen.h"
#include "support/scopes.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

namespace {

using namespace ovw::test;

constexpr std::uint32_t cnBlock8 = 65536; // bytes of an 8-bit block

class XCVOffscreenLocks : public testing::Test {
protected:
    TestStore m_store{16u << 20};
    TestImage m_image{m_store, 8, 600, 300};
    XCVOffscreen& image() { return *m_image.get(); }
};

TEST_F(XCVOffscreenLocks, AnEditingLockCreatesAndClearsTheBlock) {
    TestImage colour(m_store, 32, 600, 300);
    colour->Lock(300, 10, 1);
    EXPECT_EQ(colour->GetLockCount(), 1);
    EXPECT_EQ(colour->GetEditMode(), 1);
    EXPECT_EQ(colour->GetEditLockChecker(), 1);
    EXPECT_EQ(colour->CheckBlockEdited(1), 1);
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x)
            ASSERT_EQ(storedPixel(colour->GetBaseAddress(), 1024, 32, x, y), 0x00FFFFFFu);
    XCRect block;
    std::uint8_t* base = nullptr;
    EXPECT_EQ(colour->GetCurrentBlock(block, base), 1);
    EXPECT_EQ(base, colour->GetBaseAddress());
    EXPECT_EQ(block.left, 256);
    EXPECT_EQ(block.bottom, 256);
    colour->Unlock();
    EXPECT_EQ(colour->GetLockCount(), 0);
    EXPECT_EQ(colour->GetEditMode(), 0);
    EXPECT_EQ(colour->GetCurrentBlockIndex(), -1);
    EXPECT_EQ(colour->GetCurrentBlock(block, base), 0);
    EXPECT_EQ(colour->CheckBlockLock(1), 0);
    colour->Unlock();
    EXPECT_EQ(colour->GetLockCount(), 0);
}

TEST_F(XCVOffscreenLocks, OnlyTheCurrentBlockIsLocked) {
    m_image.setValue(0, 0, 1);
    m_image.setValue(300, 0, 2);
    XCVOffscreenAutoLock lock(&image(), 255, 0, 0);
    EXPECT_EQ(image().CheckBlockLock(0), 1);
    image().NextCursorX();
    EXPECT_EQ(image().CheckBlockLock(0), 0);
    EXPECT_EQ(image().CheckBlockLock(1), 1);
    image().MoveCursor(-1, -1);
    EXPECT_EQ(image().CheckBlockLock(1), 0);
    EXPECT_EQ(image().GetCursorPosX(), -1);
}

TEST_F(XCVOffscreenLocks, StepsOutOfTheImageAreLikeMovesOutOfIt) {
    XCVOffscreenAutoLock lock(&image(), 599, 299, 1);
    EXPECT_NE(image().GetCurrentAddress(), nullptr);
    EXPECT_EQ(image().NextCursorX(), nullptr);
    EXPECT_EQ(image().GetCurrentBlockIndex(), -1);
    EXPECT_EQ(image().GetCursorPosX(), 600);
    image().MoveCursor(599, 299);
    EXPECT_EQ(image().NextCursorY(), nullptr);
    EXPECT_EQ(image().GetCurrentBlockIndex(), -1);
    EXPECT_NE(image().PrevCursorY(), nullptr);
    image().MoveCursor(0, 0);
    EXPECT_EQ(image().PrevCursorX(), nullptr);
    image().MoveCursor(0, 0);
    EXPECT_EQ(image().PrevCursorY(), nullptr);
    EXPECT_EQ(image().OffsetCursor(-2147483647, -2147483647), nullptr);
    EXPECT_EQ(image().IsCreatedBlockByIndex(1, 0) + image().IsCreatedBlockByIndex(1, 1), 0);
}

TEST_F(XCVOffscreenLocks, AMissingBlockStaysMissingUntilTheCursorMovesThere) {
    XCVOffscreenAutoLock lock(&image(), 5, 5, 0);
    EXPECT_EQ(image().GetCurrentBlockIndex(), 0);
    image().SetEditMode(1);
    EXPECT_EQ(image().NextCursorX(), nullptr);
    EXPECT_EQ(image().NextCursorY(), nullptr);
    EXPECT_EQ(image().PrevCursorX(), nullptr);
    EXPECT_EQ(image().IsBlockExist(), 0);
    EXPECT_NE(image().MoveCursor(5, 6), nullptr);
    EXPECT_EQ(image().IsBlockExist(), 1);
}

TEST_F(XCVOffscreenLocks, AnEditingLockInsideAReadingLockMayWrite) {
    for (bool exists : {false, true}) {
        TestImage inner(m_store, 8, 10, 10);
        if (exists) {
            inner.setValue(1, 1, 3);
            inner->UnloadAllBlock();
            inner->ResetBlockEdited(0);
        }
        XCVOffscreenAutoLock reading(inner.get(), 2, 2, 0);
        {
            XCVOffscreenAutoLock editing(inner.get(), 1, 1, 1);
            ASSERT_NE(inner->GetCurrentAddress(), nullptr);
            EXPECT_EQ(inner->CheckBlockEdited(0), 1);
            inner->Set8BitColor(9);
        }
        EXPECT_EQ(inner->GetCursorPosX(), 2);
        EXPECT_EQ(inner->GetEditMode(), 0);
        inner->MoveCursor(-1, -1);
        inner->UnloadAllBlock(); // an unmarked block would lose the pixel here
        EXPECT_EQ(inner.value(1, 1), 9u);
    }
}

TEST_F(XCVOffscreenLocks, NestedLocksKeepTheEditModeThatAnInnerOneSwitchedOn) {
    image().Lock(0, 0, 0);
    image().Lock(5, 5, 1);
    EXPECT_EQ(image().GetLockCount(), 2);
    EXPECT_EQ(image().GetCursorPosX(), 5);
    image().Unlock();
    EXPECT_EQ(image().GetEditMode(), 1);
    image().Lock(6, 6, 0);
    EXPECT_EQ(image().GetEditMode(), 1);
    image().Unlock();
    image().Unlock();
    EXPECT_EQ(image().GetEditMode(), 0);
}

TEST_F(XCVOffscreenLocks, AutoLockGivesTheOuterCursorBackUnlessUnlockedByHand) {
    XCVOffscreenAutoLock outer(&image(), 7, 8, 0);
    {
        XCVOffscreenAutoLock inner(&image(), 1);
        EXPECT_EQ(image().GetCursorPosX(), -1);
        image().MoveCursor(300, 3);
    }
    EXPECT_EQ(image().GetCursorPosX(), 7);
    EXPECT_EQ(image().GetCursorPosY(), 8);
    EXPECT_EQ(image().GetEditMode(), 0);
    EXPECT_EQ(image().GetLockCount(), 1);
    {
        XCVOffscreenAutoLock inner;
        inner.Lock(&image(), 20, 21, 1);
        inner.Unlock();
        EXPECT_EQ(image().GetLockCount(), 1);
    }
    EXPECT_EQ(image().GetCursorPosX(), 20);
    EXPECT_EQ(image().GetEditMode(), 1);
}

TEST_F(XCVOffscreenLocks, EditLockKeepsTheCursorFromCreatingAndMarking) {
    m_image.setValue(0, 0, 1);
    image().ResetBlockEdited(0);
    XCVOffscreenAutoLock lock(&image(), 1);
    {
        XCVOffscreenEditLock noEdit(&image());
        EXPECT_NE(image().MoveCursor(0, 0), nullptr);
        EXPECT_EQ(image().MoveCursor(300, 0), nullptr);
    }
    EXPECT_EQ(image().CheckBlockEdited(0), 0);
    EXPECT_EQ(image().GetEditMode(), 1);
    EXPECT_NE(image().MoveCursor(301, 0), nullptr);
    XCVOffscreenEditLock again;
    again.Lock(&image());
    EXPECT_EQ(image().GetEditMode(), 0);
    again.Unlock();
    EXPECT_EQ(image().GetEditMode(), 1);
}

// A store with room for one block, which another image holds.
TEST(XCVOffscreenLockFailures, LeaveTheImageAsItWas) {
    TestStore store(cnBlock8);
    TestImage holder(store, 8, 256, 256);
    TestImage image(store, 8, 600, 300);
    auto lock = [&](int edit) { return errorOf([&] { image->Lock(0, 0, edit); }); };
    auto move = [&] { return errorOf([&] { image->MoveCursor(300, 0); }); };
    {
        XCVOffscreenAutoLock held(holder.get(), 0, 0, 1);
        EXPECT_EQ(lock(1), 8);
        EXPECT_EQ(image->GetLockCount(), 0);
        EXPECT_EQ(image->GetEditMode(), 0);
        EXPECT_EQ(image->GetCurrentBlockIndex(), -1);
        EXPECT_EQ(image->IsBlockExist(), 0);
        EXPECT_EQ(errorOf([&] { XCVOffscreenAutoLock failing(image.get(), 3, 3, 1); }), 8);
        EXPECT_EQ(image->GetLockCount(), 0);

        XCVOffscreenAutoLock outside(image.get(), 1);
        EXPECT_EQ(move(), 8);
        EXPECT_EQ(image->GetCurrentBlockIndex(), -1);
        EXPECT_EQ(image->GetCurrentAddress(), nullptr);
        EXPECT_EQ(image->GetBaseAddress(), nullptr);
        EXPECT_EQ(image->GetLockCount(), 1);
        EXPECT_EQ(lock(1), 8);
        EXPECT_EQ(image->GetLockCount(), 1);
        EXPECT_EQ(image->GetEditMode(), 1);
    }
    EXPECT_EQ(image->GetLockCount(), 0);
    image.setValue(300, 0, 7);
    EXPECT_EQ(image.value(300, 0), 7u);
    EXPECT_EQ(store.get()->GetUsedBlockCount(), 2u);
    EXPECT_EQ(errorOf([&] { XCVOffscreenAutoLock(image.get(), 0, 0, 1); }), 0);
}

// ---- The protect area

class CacheLike : public XCVOffscreen8Bit {
public:
    using XCVOffscreen::IsProtected;
    using XCVOffscreen::SetProtectMode;

    bool isTemporary(int index) const { return swapBlockOf(index)->IsTemporary(); }
};

class XCVOffscreenProtect : public testing::Test {
protected:
    XCVOffscreenProtect() {
        m_image.Create(m_store.get(), 1024, 512, 1);
        m_image.SetProtectMode(1);
    }
    void touch(int column, int row) {
        XCVOffscreenAutoLock lock(&m_image, column * 256, row * 256, 1);
        m_image.Set8BitColor(std::uint8_t(column + 4 * row + 1));
    }
    TestStore m_store{4u << 20};
    CacheLike m_image;
};

TEST_F(XCVOffscreenProtect, ProtectsTheBlocksThatTheAreaMeets) {
    for (int i = 0; i < 8; ++i)
        touch(i % 4, i / 4);
    m_image.SetProtectArea(XCRect(300, 10, 513, 200));
    for (int i = 0; i < 8; ++i) {
        const bool inside = i == 1 || i == 2;
        EXPECT_EQ(m_image.IsProtected(i), inside) << i;
        EXPECT_EQ(m_image.IsBlockAbsoluteProtect(i), inside) << i;
        EXPECT_EQ(m_image.isTemporary(i), !inside) << i;
    }
    m_image.SetProtectArea(XCRect(5000, 0, 6000, 10));
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(m_image.IsBlockAbsoluteProtect(i) + m_image.IsProtected(i), 0) << i;
}

TEST_F(XCVOffscreenProtect, BlocksCreatedLaterAreProtectedByPlace) {
    m_image.SetProtectArea(XCRect(0, 0, 256, 256));
    touch(0, 0);
    touch(1, 0);
    EXPECT_EQ(m_image.IsBlockAbsoluteProtect(0), 1);
    EXPECT_EQ(m_image.isTemporary(0), false);
    EXPECT_EQ(m_image.IsBlockAbsoluteProtect(1), 0);
    EXPECT_EQ(m_image.isTemporary(1), true);
    std::uint8_t* address = m_image.GetABSProtectAddress(0);
    ASSERT_NE(address, nullptr);
    EXPECT_EQ(*address, 1);
    EXPECT_EQ(m_image.GetABSProtectAddress(3, 2, 1), address + 2 * 256 + 3);
    EXPECT_EQ(m_image.GetABSProtectAddress(3, 2, 0), address);
    EXPECT_EQ(m_image.GetABSProtectAddress(5), nullptr);
    EXPECT_EQ(m_image.GetABSProtectAddress(-1, 0, 1), nullptr);
    m_image.UnloadAllBlock();
    EXPECT_EQ(m_image.IsBlockOnMemory(0), 1);
    EXPECT_EQ(m_image.CheckAreaType(1), AREA_EMPTY); // a temporary block is dropped
    XCVOffscreenAutoLock lock(&m_image, 256, 0, 0);
    EXPECT_EQ(m_image.Get8BitColor(), 0); // and cleared when it comes back
    m_image.ClearProtectArea();
    EXPECT_EQ(m_image.GetABSProtectAddress(0), nullptr);
}

TEST_F(XCVOffscreenProtect, SingleBlocksUniteIntoOneArea) {
    touch(0, 0);
    touch(1, 0);
    m_image.SetProtectBlockArea(XCRect(10, 10, 20, 20));
    m_image.SetProtectBlockArea(XCRect(520, 0, 530, 1));
    EXPECT_EQ(m_image.IsBlockAbsoluteProtect(0), 1);
    EXPECT_EQ(m_image.IsBlockAbsoluteProtect(1), 0); // between, but there already
    touch(2, 0);
    EXPECT_EQ(m_image.IsBlockAbsoluteProtect(2), 1);
    EXPECT_EQ(m_image.IsProtected(1), 1);
    EXPECT_EQ(m_image.IsProtected(3), 0);
    m_image.SetProtectBlockArea(XCRect(-300, 0, -299, 1));
    m_image.SetProtectBlockArea(XCRect());
    EXPECT_EQ(m_image.IsProtected(3), 0);
    m_image.AllocateRect(XCRect(-1, 0, 1, 1), nullptr);
    EXPECT_EQ(m_image.IsProtected(0), 0);
    EXPECT_EQ(m_image.IsProtected(1), 1);
    EXPECT_EQ(m_image.IsProtected(3), 1);
    EXPECT_EQ(m_image.IsProtected(4), 0);
}

TEST_F(XCVOffscreenProtect, AnOrdinaryImageKeepsItsPixels) {
    m_image.SetProtectMode(0);
    touch(0, 0);
    touch(1, 0);
    m_image.SetProtectArea(XCRect(0, 0, 10, 10));
    EXPECT_EQ(m_image.IsBlockAbsoluteProtect(0), 1);
    EXPECT_EQ(m_image.isTemporary(1), false);
    m_image.ClearProtectArea();
    m_image.UnloadAllBlock();
    XCVOffscreenAutoLock lock(&m_image, 256, 0, 0);
    EXPECT_EQ(m_image.Get8BitColor(), 2);
}

// ---- Emptiness

TEST(XCVOffscreenEmptiness, OneVisiblePixelCountsWhereverItLies) {
    TestStore store;
    struct Case {
        int depth;
        std::uint32_t empty, visible; // stored numbers
    };
    for (Case c :
         {Case{1, 0, 1}, Case{2, 1, 2}, Case{8, 0, 1}, Case{16, 0xFF00, 0x0001}, Case{32, 0x00FFFFFF, 0x01000000}}) {
        TestImage image(store, c.depth, 300, 300);
        for (int x : {0, 31, 100, 255})
            image.setValue(x, 40, c.empty);
        for (XCPoint p : {XCPoint(0, 0), XCPoint(255, 0), XCPoint(0, 255), XCPoint(255, 255), XCPoint(33, 77)}) {
            const std::uint32_t before = image.value(p.x, p.y);
            XCVOffscreenAutoLock lock(image.get(), 0, 0, 0);
            EXPECT_EQ(image->IsCurrentBlockEmpty(), 1) << c.depth;
            image.setValue(p.x, p.y, c.visible);
            EXPECT_EQ(image->IsCurrentBlockEmpty(), 0) << c.depth << ": " << p.x << ',' << p.y;
            EXPECT_EQ(image->IsCurrentBlockEmpty(XCRect(p.x, p.y, p.x + 1, p.y + 1)), 0);
            EXPECT_EQ(image->IsCurrentBlockEmpty(XCRect(p.x + 1, 0, 300, 300)), 1);
            EXPECT_EQ(image->IsCurrentBlockEmpty(XCRect(-50, 0, p.x, 256)), 1);
            image->MoveCursor(9, 9); // does not depend on the cursor
            EXPECT_EQ(image->IsCurrentBlockEmpty(XCRect(0, p.y, 256, p.y + 1)), 0);
            EXPECT_EQ(image->IsCurrentBlockEmpty(XCRect(256, 0, 300, 256)), 1);
            EXPECT_EQ(image->CheckClearBlock(0), 0);
            image.setValue(p.x, p.y, before);
            EXPECT_EQ(image->CheckClearBlock(0), c.depth >= 16);
        }
        EXPECT_EQ(image->CheckClearBlock(1), 1);
        EXPECT_EQ(image->CheckClearBlock(99), 1);
        EXPECT_EQ(image->CheckClearBlock(XCRect(260, 0, 300, 10)), 1);
        EXPECT_EQ(image->CheckClearBlock(XCRect(0, 0, 300, 10)), c.depth >= 16);
        EXPECT_EQ(image->GetLockCount(), 0);
    }
}

TEST(XCVOffscreenEmptiness, PixelsBeyondTheImageDoNotCount) {
    TestStore store;
    for (int depth : {1, 2, 8, 16, 32}) {
        TestImage image(store, depth, 10, 10);
        XCVOffscreenAutoLock lock(image.get(), 0, 0, 1);
        const std::uint32_t visible = depth <= 8 ? (1u << depth) - 1 : 0xFFFFFFFF;
        storePixel(image->GetBaseAddress(), image->GetBlockRowBytes(), depth, 10, 0, visible);
        storePixel(image->GetBaseAddress(), image->GetBlockRowBytes(), depth, 0, 10, visible);
        EXPECT_EQ(image->IsCurrentBlockEmpty(), 1) << depth;
        EXPECT_EQ(image->IsCurrentBlockEmpty(XCRect(0, 0, 256, 256)), 1) << depth;
        EXPECT_EQ(image->CheckClearBlock(0), depth >= 16);
    }
}

TEST(XCVOffscreenEmptiness, RgbBlocksAreNeverEmpty) {
    TestStore store;
    TestImage image(store, 24, 300, 10);
    {
        XCVOffscreenAutoLock lock(image.get(), 0, 0, 0);
        EXPECT_EQ(image->IsCurrentBlockEmpty(), 1); // missing
    }
    image.setValue(0, 0, 0xFFFFFF);
    XCVOffscreenAutoLock lock(image.get(), 0, 0, 0);
    EXPECT_EQ(image->IsCurrentBlockEmpty(), 0);
    EXPECT_EQ(image->IsCurrentBlockEmpty(XCRect(256, 0, 300, 10)), 1);
    EXPECT_EQ(image->CheckClearBlock(0), 0);
    EXPECT_EQ(image->CheckClearBlock(1), 1);
}

} // namespace
