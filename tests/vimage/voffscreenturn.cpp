#include "plane.h"

#include "support/scopes.h"

#include <gtest/gtest.h>

using namespace ovw::test;

namespace {

/// The process-wide store, on which turned images live.
struct ProcessStore {
    ProcessStore() { xcCreateVirtualMemory(nullptr); }
    ~ProcessStore() { xcDestroyVirtualMemory(); }
};

std::uint32_t pixelOf(XCVOffscreen& image, int x, int y) {
    XCVOffscreenAutoLock lock(&image, x, y, 0);
    return image.GetBaseAddress()
               ? storedPixel(image.GetBaseAddress(), image.GetBlockRowBytes(), image.GetDepth(), x & 255, y & 255)
               : clearOf(image.GetDepth());
}

/// The stored number that arrives elsewhere: pixels are read and written, which ends the 2-bit value that nobody
/// writes.
std::uint32_t arriving(int depth, std::uint32_t stored) { return depth == 2 && stored == 1 ? 0 : stored; }

std::unique_ptr<XCVOffscreen> turned(const TestImage& image, int angle, int flipX, int flipY, XCPoint& shift) {
    return std::unique_ptr<XCVOffscreen>(image->CreateAndRotateOffscreen(angle, flipX, flipY, shift));
}

TEST(VOffscreenTurn, TurnsAndMirrorsEveryPixelOfEveryDepth) {
    const ProcessStore process;
    constexpr int cnWidth = 300, cnHeight = 100;
    for (int depth : cnDepths) {
        TestStore store;
        TestImage image(store, depth, cnWidth, cnHeight);
        scribble(image, XCRect(3, 2, cnWidth, cnHeight));
        for (int angle : {0, 90, 180, 270})
            for (int flips = 0; flips < 4; ++flips) {
                XCPoint shift;
                const auto result = turned(image, angle, flips & 1, flips & 2, shift);
                const bool isTurned = angle % 180 != 0;
                const int nw = isTurned ? 256 : 512, nh = isTurned ? 512 : 256;
                ASSERT_EQ(result->GetRect(), XCRect(0, 0, nw, nh));
                for (int y = 0; y < cnHeight; y += 9)
                    for (int x = 0; x < cnWidth; x += 7) {
                        int tx = angle == 0 ? x : angle == 90 ? nw - 1 - y : angle == 180 ? nw - 1 - x : y;
                        int ty = angle == 0 ? y : angle == 90 ? x : angle == 180 ? nh - 1 - y : nh - 1 - x;
                        tx = flips & 1 ? nw - 1 - tx : tx;
                        ty = flips & 2 ? nh - 1 - ty : ty;
                        ASSERT_EQ(pixelOf(*result, tx, ty), arriving(depth, image.value(x, y)))
                            << depth << " bits, " << angle << " degrees, flips " << flips << " (" << x << ", " << y
                            << ")";
                    }
            }
    }
}

TEST(VOffscreenTurn, SaysWhereTheImageBegins) {
    const ProcessStore process;
    TestStore store;
    TestImage image(store, 32, 300, 100);
    const struct {
        int angle, flipX, flipY, x, y;
    } cases[] = {
        {0, 0, 0, 0, 0},       {0, 1, 1, 212, 156}, {90, 0, 0, 156, 0},  {90, 1, 0, 0, 0},      {90, 0, 1, 156, 212},
        {180, 0, 0, 212, 156}, {180, 1, 1, 0, 0},   {270, 0, 0, 0, 212}, {270, 1, 0, 156, 212}, {270, 0, 1, 0, 0},
    };
    for (const auto& c : cases) {
        XCPoint shift;
        const auto result = turned(image, c.angle, c.flipX, c.flipY, shift);
        EXPECT_TRUE(shift.x == c.x && shift.y == c.y) << c.angle << ": " << shift.x << ", " << shift.y;
    }
    XCPoint shift;
    EXPECT_EQ(errorOf([&] { turned(image, 45, 0, 0, shift); }), 0x20010008);
}

TEST(VOffscreenTurn, TurnsByNinetyDegreesPixelByPixel) {
    const ProcessStore process;
    for (int depth : cnDepths) {
        TestStore store;
        TestImage image(store, depth, 300, 275);
        scribble(image, XCRect(200, 240, 300, 275), 4);
        image->SetClearColor(std::uint32_t{0x00102030});
        const std::unique_ptr<XCVOffscreen> result(image->CreateAndRotate90());
        ASSERT_EQ(result->GetRect(), XCRect(0, 0, 275, 300));
        for (int y = 240; y < 275; ++y)
            for (int x = 200; x < 300; ++x)
                ASSERT_EQ(pixelOf(*result, y, 299 - x), arriving(depth, image.value(x, y)))
                    << depth << " bits at " << x << ", " << y;
        std::uint32_t clear = 0;
        result->GetClearColor(&clear);
        EXPECT_EQ(clear, 0x00102030u);
    }
}

TEST(VOffscreenTurn, LeavesMissingBlocksMissing) {
    const ProcessStore process;
    TestStore store;
    TestImage image(store, 8, 30000, 600);
    image.setValue(29999, 599, 7);
    XCPoint shift;
    const auto blocks = turned(image, 270, 0, 0, shift);
    const std::unique_ptr<XCVOffscreen> pixels(image->CreateAndRotate90());
    EXPECT_EQ(blocks->GetUsedMemory(0, 0), 65536u);
    EXPECT_EQ(pixels->GetUsedMemory(0, 0), 65536u);
    EXPECT_EQ(pixelOf(*pixels, 599, 0), 7u);
}

// ---- Moving pixels

struct MovedPair {
    TestStore store;
    TestImage from, to;

    explicit MovedPair(int depth) : from(store, depth, 341, 307), to(store, depth, 341, 307) {
        paintThreeBlocks(from, 3);
        scribble(to, XCRect(230, 150, 300, 290), 9);
    }
};

TEST(VOffscreenMove, TakesPixelsOutOfTheSource) {
    const XCRect rects[] = {XCRect(210, 190, 290, 280), XCRect(-5, -9, 1000, 1000), XCRect(300, 300, 300, 300)};
    for (int depth : cnDepths)
        for (const XCRect& r : rects) {
            MovedPair p(depth), again(depth);
            Plane to(p.to), from(p.from);
            for (int y = std::max(r.top, 0); y < std::min(r.bottom, 307); ++y)
                for (int x = std::max(r.left, 0); x < std::min(r.right, 341); ++x) {
                    const std::uint32_t v = from.stored(x, y);
                    const bool visible = depth == 16 ? v & 0xFF : depth == 32 ? v >> 24 : true;
                    if (!from.exists(x, y)) {
                        if (depth != 16 && depth != 32 && to.exists(x, y))
                            to.store(x, y, depth == 24 ? 0xFFFFFF : 0);
                    } else if (visible) {
                        to.store(x, y, arriving(depth, v));
                        from.store(x, y, clearOf(depth));
                    }
                }
            p.to->Move(r.left, r.top, r.Width(), r.Height(), p.from.get());
            again.to->MoveAndRevision(r.left, r.top, r.Width(), r.Height(), again.from.get());
            EXPECT_EQ(to.difference(p.to), "") << depth << " bits, from " << r.left;
            EXPECT_EQ(from.difference(p.from), "") << depth << " bits, from " << r.left;
            EXPECT_EQ(to.difference(again.to), "");
        }
}

TEST(VOffscreenMove, MarksTheSourceEditedWhereItChanged) {
    MovedPair p(32);
    for (int i = 0; i < 4; ++i)
        p.from->ResetBlockEdited(i);
    p.to->Move(200, 200, 40, 40, p.from.get());
    EXPECT_EQ(p.from->CheckBlockEdited(0), 1);
    EXPECT_EQ(p.from->CheckBlockEdited(1) + p.from->CheckBlockEdited(3), 0);
    const int edited = p.to->CheckBlockEdited(0);
    p.to->Move(0, 0, 100, 100, p.from.get()); // nothing to be seen there
    EXPECT_EQ(p.to->CheckBlockEdited(0), edited);
}

TEST(VOffscreenMove, NeedsAnImageOfTheSameKind) {
    MovedPair p(8);
    TestImage other(p.store, 8, 340, 307), deeper(p.store, 16, 341, 307);
    Plane before(p.to);
    for (XCVOffscreen* source : {p.to.get(), other.get(), deeper.get(), static_cast<XCVOffscreen*>(nullptr)})
        p.to->Move(0, 0, 300, 300, source);
    EXPECT_EQ(before.difference(p.to), "");
}

} // namespace
