#include "plane.h"

#include <gtest/gtest.h>

#include <climits>

using namespace ovw::test;

namespace {

constexpr int cnWidth = 341, cnHeight = 307;

struct Pair {
    TestStore store;
    TestImage from, to;

    Pair(int toDepth, int fromDepth)
        : from(store, fromDepth, cnWidth, cnHeight), to(store, toDepth, cnWidth, cnHeight) {
        paintThreeBlocks(from, 3);
        scribble(to, XCRect(230, 150, 300, 256), 9);
        scribble(to, XCRect(256, 256, 320, 290), 10);
    }
};

template <class Visit>
void forEachCopied(const Plane& to, const Plane& from, const Transfer& t, Visit visit) {
    for (std::int64_t y = std::max(t.y, 0); y < std::min<std::int64_t>(std::int64_t(t.y) + t.h, to.height()); ++y)
        for (std::int64_t x = std::max(t.x, 0); x < std::min<std::int64_t>(std::int64_t(t.x) + t.w, to.width()); ++x) {
            const std::int64_t sx = x - t.x + t.sx, sy = y - t.y + t.sy;
            if (from.isInside(sx, sy))
                visit(int(x), int(y), sx, sy);
        }
}

/// Only for copies that cover no block whole.
void referenceCopy(Plane& to, Plane& from, const Transfer& t, bool clears) {
    forEachCopied(to, from, t, [&](int x, int y, std::int64_t sx, std::int64_t sy) {
        if (from.exists(sx, sy))
            to.store(x, y, from.stored(sx, sy));
        else if (clears && to.exists(x, y))
            to.store(x, y, clearOf(to.depth()));
    });
}

std::uint32_t valueFor(int to, int from, const Readings& r) {
    switch (to) {
    case 1: return r.bit1;
    case 2: return r.bit2;
    case 8: return r.bit8;
    case 24: return from <= 8 ? r.bit24 : r.bit32;
    default: return r.bit32;
    }
}

void referenceConvert(Plane& to, Plane& from, const Transfer& t, bool merge) {
    const int bits = to.depth() == 16 ? 32 : to.depth();
    const bool isRaw = to.depth() == from.depth() && (t.sx - t.x) * to.depth() % 8 == 0;
    forEachCopied(to, from, t, [&](int x, int y, std::int64_t sx, std::int64_t sy) {
        if (!from.exists(sx, sy)) {
            if (!merge && to.exists(x, y))
                to.store(x, y, clearOf(to.depth()));
            return;
        }
        const std::uint32_t value = valueFor(to.depth(), from.depth(), from.readings(sx, sy));
        if (!merge && isRaw)
            to.store(x, y, from.stored(sx, sy));
        else if (!merge)
            to.write(x, y, bits, value);
        else if (to.depth() == 8)
            to.unite(x, y, int(value));
        else if (to.depth() < 8)
            value ? to.write(x, y, bits, value) : to.store(x, y, to.stored(x, y));
        else
            to.mergeBehind(x, y, value);
    });
}

const Transfer cnTransfers[] = {
    {210, 190, 100, 90, 210, 190},          // the same place
    {203, 190, 110, 100, 200, 185},         // unaligned, also within bytes
    {-30, 20, 330, 280, 10, 30},            // beyond the left edge
    {256, 0, 80, 300, 0, 0},                // by whole blocks
    {100, 100, INT_MAX, INT_MAX, 150, 120}, // longer than any image
    {INT_MIN, 5, INT_MAX, 200, 0, 0},       // ends left of the image
    {0, 0, 300, 300, INT_MIN, INT_MAX},
};

TEST(VOffscreenCopy, CopiesWithinADepthPixelByPixel) {
    for (int depth : cnDepths)
        for (const Transfer& t : cnTransfers)
            for (int flag : {0, 1}) {
                Pair p(depth, depth);
                Plane expected(p.to), source(p.from);
                referenceCopy(expected, source, t, flag == 1);
                p.to->Copy(t.x, t.y, t.w, t.h, p.from.get(), t.sx, t.sy, flag);
                EXPECT_EQ(expected.difference(p.to), "") << depth << " bits from x " << t.sx << ", flag " << flag;
                EXPECT_EQ(source.difference(p.from), "");
            }
}

TEST(VOffscreenCopy, ConvertsEveryDepthIntoEveryOther) {
    for (int to : cnDepths)
        for (int from : cnDepths)
            for (int merge : {0, 1}) {
                const Transfer& t = cnTransfers[(to / 8 + from / 8 + merge) % 3];
                Pair p(to, from);
                Plane expected(p.to), source(p.from);
                referenceConvert(expected, source, t, merge);
                EXPECT_EQ(p.to->CommonCopy(t.x, t.y, t.w, t.h, p.from.get(), t.sx, t.sy, 0, merge, 0), 1);
                EXPECT_EQ(expected.difference(p.to), "") << from << " to " << to << ", merge " << merge;
                if (to == from || merge)
                    continue;
                Pair again(to, from);
                EXPECT_EQ(again.to->Copy(t.x, t.y, t.w, t.h, again.from.get(), t.sx, t.sy, 0), 0);
                EXPECT_EQ(expected.difference(again.to), "") << from << " to " << to << " by Copy";
            }
}

TEST(VOffscreenCopy, FreesBlocksUnderEmptyOnes) {
    TestStore store;
    TestImage empty(store, 32, 600, 600), to(store, 32, 600, 600);
    scribble(to, XCRect(250, 250, 600, 600));
    ASSERT_EQ(to->GetUsedMemory(0, 0), 9 * 262144u);
    EXPECT_EQ(to->Copy(256, 256, 300, 300, empty.get(), 0, 0, 0), 1); // only block (1, 1) is covered whole
    EXPECT_EQ(to->GetUsedMemory(0, 0), 8 * 262144u);
    EXPECT_FALSE(to->GetBlockExist(300, 300));
    EXPECT_NE(to.value(540, 540), 0x00FFFFFFu);                     // flag 0 keeps partly covered blocks
    EXPECT_EQ(to->Copy(512, 512, 88, 88, empty.get(), 0, 0, 1), 1); // all of an edge block that lies in the image
    EXPECT_FALSE(to->GetBlockExist(540, 540));
    EXPECT_EQ(to->Copy(0, 0, 600, 600, empty.get(), 0, 0, 0), 1);
    EXPECT_FALSE(to->IsBlockExist());
    EXPECT_EQ(to->Copy(0, 0, 600, 600, empty.get(), 0, 0, 1), 0);
    EXPECT_EQ(to->CopyAll(empty.get()), 0);
}

TEST(VOffscreenCopy, ClearsWithTheDestinationsOwnColour) {
    TestStore store;
    TestImage empty(store, 32, 300, 300), to(store, 32, 300, 300);
    to->SetClearColor(std::uint32_t{0x80123456});
    to.setValue(5, 5, 0xFF000000);
    EXPECT_EQ(to->Copy(4, 4, 10, 10, empty.get(), 0, 0, 1), 1);
    EXPECT_EQ(to.value(5, 5), 0x80123456u);
    EXPECT_EQ(to->Copy(4, 4, 10, 10, empty.get(), 0, 0, 0), 0);
}

TEST(VOffscreenCopy, CopiesWithinOneImageAsThroughAnother) {
    for (int depth : cnDepths)
        for (const Transfer& t : cnTransfers) {
            Pair p(depth, depth);
            Plane expected(p.from), source(p.from);
            referenceCopy(expected, source, t, false);
            p.from->Copy(t.x, t.y, t.w, t.h, p.from.get(), t.sx, t.sy, 0);
            EXPECT_EQ(expected.difference(p.from), "") << depth << " bits to x " << t.x;
        }
}

TEST(VOffscreenCopy, WholeCopiesShareSizeAndDepth) {
    Pair p(16, 16);
    std::unique_ptr<XCVOffscreen> copy(p.from->CreateAndCopyAll());
    Plane expected(p.from);
    EXPECT_EQ(p.to->CopyAll(p.from.get()), 1);
    EXPECT_EQ(expected.difference(p.to), "");
    EXPECT_EQ(p.to->CopyAll(copy.get()), 1);
    EXPECT_EQ(expected.difference(p.to), "");
    TestImage other(p.store, 8, cnWidth, cnHeight), smaller(p.store, 16, cnWidth - 1, cnHeight);
    EXPECT_EQ(p.to->CopyAll(other.get()) + p.to->CopyAll(smaller.get()) + p.to->CopyAll(nullptr), 0);
    EXPECT_EQ(p.to->Copy(0, 0, 5, 5, nullptr, 0, 0, 0) + p.to->CommonCopy(0, 0, 5, 5, nullptr, 0, 0, 0, 0, 0), 0);
}

TEST(VOffscreenCopy, ReadsWithoutMakingBlocks) {
    Pair p(32, 32);
    XCVOffscreenAutoLock editing(p.from.get(), 1); // the caller's own lock must not make a reader create blocks
    p.to->Copy(1, 1, 340, 300, p.from.get(), 0, 0, 1);
    EXPECT_FALSE(p.from->GetBlockExist(300, 300));
    EXPECT_EQ(p.from->GetEditMode(), 1);
}

TEST(VOffscreenMerge, PutsColoursBehind) {
    TestStore store;
    TestImage image(store, 32, 4, 4);
    XCVOffscreenAutoLock lock(image.get(), 0, 0, 1);
    const struct {
        std::uint32_t behind, front, result;
    } cases[] = {
        {0xFF0000FF, 0x80FF0000, 0xFF80007F}, // red behind half blue
        {0xFF0000FF, 0xFF123456, 0xFF123456},
        {0x40112233, 0x00654321, 0x40112233},
        {0x00112233, 0x80654321, 0x80654321},
        {0x80000000, 0x80FFFFFF, 0xC0ABABAB}, // half black behind half white: 255 - 63 x 255 / 192
    };
    for (const auto& c : cases) {
        image->MoveCursor(1, 1);
        image->Set32BitColor(c.front);
        image->AlphaMergePixel(c.behind, c.front, 1, 1);
        EXPECT_EQ(image->Get32BitColor(), c.result) << std::hex << c.behind << " " << c.front;
        std::uint8_t pixels[8] = {std::uint8_t(c.behind >> 16), std::uint8_t(c.behind >> 8), std::uint8_t(c.behind),
                                  std::uint8_t(c.behind >> 24), std::uint8_t(c.front >> 16), std::uint8_t(c.front >> 8),
                                  std::uint8_t(c.front),        std::uint8_t(c.front >> 24)};
        XCVOffscreen::AlphaMergePixelCore(pixels, pixels + 4);
        EXPECT_EQ(pack(pixels[7], pixels[6], pixels[5], pixels[4]), c.result);
        const bool tints = (c.behind >> 24) && (c.front >> 24);
        image->Set32BitColor(0x01020304);
        image->AlphaMergeColorPixel(c.behind, c.front);
        EXPECT_EQ(image->Get32BitColor(), tints ? c.result : 0x01020304u);
    }
}

} // namespace
