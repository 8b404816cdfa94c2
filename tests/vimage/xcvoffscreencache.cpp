#include "ovwcmn/xcvoffscreencache.h"

#include "ovwcmn/xcvoffscreen.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace ovw::test;
using Cache = std::unique_ptr<XCVOffscreenCache, void (*)(XCVOffscreenCache*)>;
using Backup = std::unique_ptr<XCVOffscreenBackup, void (*)(XCVOffscreenBackup*)>;

void paint(XCVOffscreen* image, int x, int y) {
    XCVOffscreenAutoLock lock(image, x, y, 1);
    image->Set32BitColor(0xFF000000u + static_cast<std::uint32_t>(x * 1000 + y));
}

XCTArray<tagRECT, 0> listOf(std::initializer_list<tagRECT> rects) {
    XCTArray<tagRECT, 0> list;
    for (const tagRECT& rect : rects)
        list.PushBack(rect);
    return list;
}

/// Three by two blocks, each painted in its first pixel.
class VOffscreenCache : public testing::Test {
protected:
    VOffscreenCache() {
        m_cache->Create(m_store.get(), 700, 400, 72.0);
        for (int index = 0; index < 6; ++index)
            paint(image(), index % 3 * 256, index / 3 * 256);
    }
    ~VOffscreenCache() override { m_cache->Destroy(); }

    XCVOffscreen* image() { return m_cache->GetThisOffscreen(); }
    XCVOffscreen* lower() { return m_cache->GetLowerOffscreen(); }
    /// The existing blocks as bits.
    static int blocks(const XCVOffscreen* image) {
        int bits = 0;
        for (int index = 0; index < 6; ++index)
            bits |= image->GetBlockExist(index) << index;
        return bits;
    }
    int flagged(std::uint32_t flag) {
        int bits = 0;
        for (int index = 0; index < 6; ++index)
            bits |= m_cache->IsFlag(index, flag) << index;
        return bits;
    }

    TestStore m_store;
    Cache m_cache{XCVOffscreen::CreateOffscreenCache(32), XCVOffscreen::DeleteOffscreenCache};
};

TEST_F(VOffscreenCache, FlagsReachTheBlocksOfIndexesRectanglesAndLists) {
    m_cache->SetCached(4, 1);
    EXPECT_EQ(flagged(1), 1 << 4);
    const XCRect rect(255, 0, 257, 256);
    m_cache->SetDrawn(&rect, 1);
    EXPECT_EQ(flagged(2), 0b000011);
    m_cache->SetDummyCached(listOf({{600, 300, 601, 301}, {-1, 0, 900, 900}, {10, 10, 690, 390}}), 1);
    EXPECT_EQ(flagged(4), 0b100001);
    m_cache->SetFlag(static_cast<const XCRect*>(nullptr), 16, 1);
    EXPECT_EQ(flagged(16), 0b111111);
    EXPECT_EQ(m_cache->IsFlag(0, 2 | 4 | 16), 1);
    EXPECT_EQ(m_cache->IsFlag(0, 1 | 2), 0);
    EXPECT_EQ(m_cache->IsDrawn(256, 200), 1);
    for (const int index : {-1, 6}) {
        m_cache->SetCached(index, 1);
        m_cache->SetFlagSimple(index, 1);
        EXPECT_EQ(m_cache->IsCached(index), 0);
    }
    EXPECT_EQ(m_cache->IsCached(-1, 0) || m_cache->IsCached(700, 0), 0);
    EXPECT_EQ(blocks(image()), 0b111111);
}

TEST_F(VOffscreenCache, WhatIsNoLongerCachedLosesItsPixels) {
    m_cache->SetFlagSimple(2, 1 | 2 | 64);
    m_cache->SetCached(2, 0);
    m_cache->SetCached(3, 0); // it was not cached
    EXPECT_EQ(blocks(image()), 0b110011);
    EXPECT_EQ(m_cache->IsFlag(2, 2 | 64), 1);
    m_cache->SetDrawn(listOf({{0, 0, 1, 1}}), 0);
    m_cache->SetDummyCached(0, 0);
    EXPECT_EQ(blocks(image()), 0b110011);
    m_cache->SetFlagSimple(0, 0xFF);
    m_cache->ClearAllFlag(0);
    EXPECT_EQ(m_cache->IsFlag(0, 0x88), 1);
    EXPECT_EQ(blocks(image()), 0b110010);
    m_cache->ClearAllFlag(static_cast<const XCRect*>(nullptr));
    EXPECT_EQ(blocks(image()) | flagged(1) | flagged(2) | flagged(64), 0);
}

TEST_F(VOffscreenCache, BlocksGoDownAndComeBackUp) {
    const XCRect block(256, 256, 512, 512);
    EXPECT_EQ(m_cache->UpdateLowerCache(block, 4, 0), 0);
    EXPECT_EQ(m_cache->UpdateLowerCache(XCRect(256, 256, 512, 400), 4, 1), 0);
    EXPECT_EQ(m_cache->UpdateLowerCache(block, 6, 1) || m_cache->UpdateLowerCache(block, -1, 1), 0);
    EXPECT_EQ(m_cache->IsLowerCache(4) || blocks(lower()), 0);
    EXPECT_EQ(m_cache->UpdateLowerCache(block, 4, 1), 1);
    EXPECT_EQ(m_cache->IsLowerCache(4), 1);
    EXPECT_EQ(blocks(lower()), 1 << 4);
    image()->DestroyBlock(4, 0);
    EXPECT_EQ(m_cache->UpdateLowerCache(block, 4, 0), 1);
    XCVOffscreenAutoLock lock(image(), 256, 256, 0);
    EXPECT_EQ(image()->Get32BitColor(), 0xFF000000u + 256256);
    m_cache->ClearLowerCache(4);
    EXPECT_EQ(m_cache->IsLowerCache(4), 0);
    EXPECT_EQ(blocks(lower()), 1 << 4);
    m_cache->AllClearLowerCache();
    EXPECT_EQ(blocks(lower()), 0);
}

TEST_F(VOffscreenCache, LaysACheckerboardOfEightPixels) {
    {
        const XCVOffscreenAutoLock lock(image(), 7, 0, 1);
        image()->Set32BitColor(0xFF123456);
    }
    m_cache->RenderBackground(image()->GetRect(), 0xFFFFFF, 0, 0); // behind what is painted
    XCVOffscreenAutoLock lock(image(), 7, 0, 0);
    EXPECT_EQ(image()->Get32BitColor(), 0xFF123456);
    m_cache->RenderBackgroundFill(image()->GetRect(), 0xFFFFFF, 0, 0);
    image()->MoveCursor(7, 0);
    const std::uint32_t first = image()->Get32BitColor();
    EXPECT_NE(first, 0xFF123456);
    image()->NextCursorX();
    EXPECT_NE(image()->Get32BitColor(), first);
}

TEST_F(VOffscreenCache, ReplacesItsImageAndForgetsItsMarks) {
    XCVOffscreen* const before = image();
    XCVOffscreen* const other = XCVOffscreen::CreateOffscreen(32);
    EXPECT_EQ(m_cache->SetThisOffscreen(other), before);
    EXPECT_EQ(image(), other);
    XCVOffscreen::DeleteOffscreen(m_cache->SetThisOffscreen(before));
    m_cache->SetCached(0, 1);
    m_cache->Destroy();
    EXPECT_EQ(m_cache->IsCached(0), 0);
    EXPECT_EQ(m_store.get()->GetUsedBlockCount(), 0u);
    m_cache->Create(m_store.get(), 100, 100, 72.0);
    EXPECT_EQ(m_cache->IsCached(0), 0);
    EXPECT_EQ(XCVOffscreen::CreateOffscreenCache(5), nullptr);
}

TEST_F(VOffscreenCache, NoRectangleMeansEveryMarkWhateverBecameOfTheImage) {
    constexpr const XCRect* everywhere = nullptr;
    m_cache->SetDrawn(everywhere, 1);
    image()->DeallocateBlock(DEALLOCATE_BOTTOM);
    m_cache->SetDrawn(everywhere, 0);
    EXPECT_EQ(flagged(2), 0);
    XCVOffscreen* const before = m_cache->SetThisOffscreen(nullptr);
    m_cache->SetFlagSimple(0, 1);
    m_cache->SetCached(0, 0);
    EXPECT_EQ(m_cache->IsCached(0), 0);
    m_cache->SetThisOffscreen(before);
}

TEST(VOffscreenBackup, AStateOfNoneFreesTheBlock) {
    TestStore store;
    const Backup backup(XCVOffscreen::CreateOffscreenBackup(8), XCVOffscreen::DeleteOffscreenBackup);
    backup->Create(store.get(), 600, 300, 72.0);
    XCVOffscreen* const image = backup->GetOffscreen();
    for (const int x : {0, 256, 512})
        paint(image, x, 0);
    const auto state = [](int value) { return static_cast<BACKUP_STATE>(value); };
    const XCRect right(300, 0, 600, 10);
    backup->SetState(&right, state(7));
    backup->SetState(listOf({{599, 299, 600, 300}}), state(-2));
    EXPECT_EQ(backup->GetState(0, 0), 0);
    EXPECT_EQ(backup->GetState(511, 255), 7);
    EXPECT_EQ(backup->GetState(512, 256), -2);
    EXPECT_EQ(backup->GetState(-1, 0) || backup->GetState(0, 300), 0);
    backup->SetState(&right, BACKUP_NONE);
    EXPECT_EQ(image->GetBlockExist(0) && !image->GetBlockExist(1) && !image->GetBlockExist(2), 1);
    backup->SetState(static_cast<const XCRect*>(nullptr), BACKUP_NONE);
    EXPECT_EQ(image->IsBlockExist(), 0);
    backup->SetState(&right, state(3));
    backup->Destroy();
    EXPECT_EQ(backup->GetState(300, 0), 0);
    EXPECT_EQ(store.get()->GetUsedBlockCount(), 0u);
    EXPECT_EQ(XCVOffscreen::CreateOffscreenBackup(0), nullptr);
}

} // namespace
