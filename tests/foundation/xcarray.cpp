#include "ovwcmn/xcarray.h"

#include "support/scopes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

namespace {

using ovw::test::errorOf;

template <class T>
std::vector<T> elements(const XCTArray<T, 0>& array) {
    return std::vector<T>(array.begin(), array.end());
}

XCTArray<int, 0> counted(int size) {
    XCTArray<int, 0> array;
    for (int i = 0; i < size; ++i)
        array.PushBack(i);
    return array;
}

TEST(XCTArray, GrowsInStepsOf256Elements) {
    XCTArray<double, 0> array;
    EXPECT_EQ(array.GetCapacity(), 0);
    const struct {
        int size, capacity;
    } steps[] = {{1, 256}, {256, 256}, {257, 512}, {0, 512}, {1000, 1024}, {1025, 1280}, {-5, 1280}};
    for (const auto& step : steps) {
        array.SetSize(step.size);
        EXPECT_EQ(array.GetSize(), step.size > 0 ? step.size : 0);
        EXPECT_EQ(array.GetCapacity(), step.capacity);
    }
}

TEST(XCTArray, NewElementsAreZeroOldOnesComeBack) {
    XCTArray<int, 0> array = counted(300);
    array.SetSize(0);
    array.SetSize(300);
    EXPECT_EQ(elements(array), elements(counted(300)));
    array.SetSize(600);
    for (int i = 300; i < 600; ++i)
        ASSERT_EQ(array[i], 0) << i;
}

TEST(XCTArray, InsertsAndRemoves) {
    XCTArray<char, 0> array;
    for (const char letter : {'a', 'b', 'c'})
        array.InsertAt(99, letter);
    array.InsertAt(0, 'x');
    EXPECT_EQ(elements(array), (std::vector<char>{'x', 'a', 'b', 'c'}));
    array.RemoveAt(1);
    EXPECT_EQ(elements(array), (std::vector<char>{'x', 'b', 'c'}));
    array.InsertAt(2, 'y');
    array.InsertAt(-1, 'z');
    array.InsertAt(5, '!');
    EXPECT_EQ(elements(array), (std::vector<char>{'x', 'b', 'y', 'c', 'z', '!'}));
    array.RemoveAt(6);
    array.RemoveAt(-1);
    array.RemoveAt(5);
    EXPECT_EQ(elements(array), (std::vector<char>{'x', 'b', 'y', 'c', 'z'}));
}

TEST(XCTArray, TakesElementsOfItself) {
    XCTArray<int, 0> appended = counted(256);
    appended.PushBack(appended[200]);
    EXPECT_EQ(appended[256], 200);
    XCTArray<int, 0> moved = counted(256);
    moved.InsertAt(3, moved[255]);
    EXPECT_EQ(moved[3], 255);
    EXPECT_EQ(moved[256], 255);
    XCTArray<int, 0> shifted = counted(10);
    shifted.InsertAt(0, shifted[5]);
    EXPECT_EQ(shifted[0], 5);
    EXPECT_EQ(shifted[6], 5);
}

TEST(XCTArray, SizesBeyond32BitsThrowNoMemory) {
    constexpr int most = std::numeric_limits<int>::max();
    XCTArray<std::uint64_t, 0> array;
    array.PushBack(42);
    EXPECT_EQ(errorOf([&] { array.SetSize(most); }), 8);
    EXPECT_EQ(errorOf([&] { array.SetSize(0x20000000); }), 8); // 4 GiB, which would wrap to nothing
    EXPECT_EQ(array.GetSize(), 1);
    EXPECT_EQ(array.GetCapacity(), 256);
    EXPECT_EQ(array[0], 42u);
    XCTArray<char, 0> characters;
    EXPECT_EQ(errorOf([&] { characters.SetSize(most); }), 8); // the capacity would pass the greatest int
    EXPECT_EQ(characters.GetSize(), 0);
}

TEST(XCTArray, CopiesAreIndependentAndMovesTakeTheBlock) {
    XCTArray<int, 0> first = counted(300);
    XCTArray<int, 0> second(first);
    first[0] = 99;
    EXPECT_EQ(second[0], 0);
    second = first;
    second = *&second;
    EXPECT_EQ(elements(second), elements(first));
    XCTArray<int, 0> third(std::move(second));
    EXPECT_EQ(elements(third), elements(first));
    second = std::move(third);
    second.PushBack(7);
    EXPECT_EQ(second.GetSize(), 301);
}

} // namespace
