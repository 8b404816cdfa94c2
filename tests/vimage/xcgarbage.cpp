#include "ovwcmn/xcswap.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

/// The extents in their order.
std::string extents(const XCGarbage& garbage) {
    std::string text;
    for (int i = 0; i < garbage.GetCount(); ++i) {
        const XCGarbageBlock& extent = garbage.GetAt(i);
        EXPECT_EQ(extent.GetEndPos() - extent.GetBeginPos(), extent.GetSize());
        text += std::to_string(extent.GetBeginPos()) + '-' + std::to_string(extent.GetEndPos()) + ' ';
    }
    return text;
}

std::uint64_t request(XCGarbage& garbage, std::uint64_t size) {
    std::uint64_t position = 0;
    EXPECT_EQ(garbage.Request(&position, size), 1);
    return position;
}

TEST(XCSwapGarbage, OneExtentSplitsOrIsTakenWhole) {
    XCGarbageBlock extent(100, 300, 200);
    std::uint64_t position = 7;
    EXPECT_EQ(extent.Request(&position, 201), XCGarbageBlock::REQUEST_TOO_SMALL);
    EXPECT_EQ(position, 7u);
    EXPECT_EQ(extent.Request(&position, 199), XCGarbageBlock::REQUEST_SPLIT);
    EXPECT_EQ(position, 100u);
    EXPECT_EQ(extent.GetBeginPos(), 299u);
    EXPECT_EQ(extent.GetSize(), 1u);
    EXPECT_EQ(extent.Request(&position, 1), XCGarbageBlock::REQUEST_EXACT);
    EXPECT_EQ(position, 299u);
    extent = XCGarbageBlock(100, 300, 200);
    extent.Resize(50);
    extent.ResizeForward(40);
    EXPECT_EQ(extent, XCGarbageBlock(60, 350, 290));
    EXPECT_LT(XCGarbageBlock(1, 9, 8), XCGarbageBlock(2, 3, 1));
}

TEST(XCSwapGarbage, FirstFitInOrderOfInsertion) {
    XCGarbage garbage;
    garbage.Create(1000);
    EXPECT_EQ(request(garbage, 1000), 0u);
    std::uint64_t position = 5;
    EXPECT_EQ(garbage.Request(&position, 1), 0);
    garbage.Add(500, 600, 100);
    garbage.Add(0, 300, 300);
    EXPECT_EQ(extents(garbage), "500-600 0-300 ");
    EXPECT_EQ(request(garbage, 100), 500u);
    EXPECT_EQ(request(garbage, 100), 0u);
    EXPECT_EQ(extents(garbage), "100-300 ");
    EXPECT_EQ(garbage.Request(&position, 201), 0);
}

TEST(XCSwapGarbage, NeighboursMergeInFrontAndBehind) {
    XCGarbage garbage;
    garbage.Create(1000);
    request(garbage, 1000);
    garbage.Add(0, 100, 100);
    garbage.Add(800, 900, 100);
    garbage.Add(200, 300, 100);
    garbage.Add(100, 200, 100);
    EXPECT_EQ(extents(garbage), "800-900 0-300 ");
    garbage.Add(300, 400, 100);
    EXPECT_EQ(extents(garbage), "800-900 0-400 ");
    garbage.Add(700, 800, 100);
    EXPECT_EQ(extents(garbage), "0-400 700-900 ");
    garbage.Enlarge(250, 1000);
    EXPECT_EQ(extents(garbage), "0-400 700-900 1000-1250 ");
    garbage.Enlarge(50, 1250);
    garbage.Add(900, 1000, 100);
    EXPECT_EQ(extents(garbage), "0-400 700-1300 ");
    garbage.Create(10);
    EXPECT_EQ(extents(garbage), "0-10 ");
    garbage.Destroy();
    EXPECT_EQ(garbage.GetCount(), 0);
}

TEST(XCSwapGarbage, NoByteIsHandedOutTwiceAndAllComeBack) {
    constexpr std::uint32_t total = 4096;
    XCGarbage garbage;
    garbage.Create(total);
    std::vector<char> used(total);
    std::map<std::uint64_t, std::uint64_t> taken;
    std::mt19937 random(5);
    for (int step = 0; step < 20000; ++step) {
        std::uint64_t position = 0, size = 1 + random() % 40;
        if (random() % 2 && garbage.Request(&position, size)) {
            for (std::uint64_t i = position; i < position + size; ++i)
                ASSERT_FALSE(used.at(i)++) << step;
            taken[position] = size;
        } else if (auto it = taken.lower_bound(random() % total); it != taken.end()) {
            std::fill_n(used.begin() + std::ptrdiff_t(it->first), it->second, char(0));
            garbage.Add(it->first, it->first + it->second, it->second);
            taken.erase(it);
        }
    }
    for (auto [begin, size] : taken)
        garbage.Add(begin, begin + size, size);
    EXPECT_EQ(extents(garbage), "0-4096 ");
}

} // namespace
