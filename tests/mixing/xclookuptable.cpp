#include "ovwcmn/xclookuptable.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

/// A type 1 table with entry i = i * factor + offset in a byte.
XCLookUpTable curve(int factor, int offset) {
    XCLookUpTable table;
    table.Create(1);
    for (int i = 0; i < 256; ++i)
        table.Get32BitTable()[i] = std::uint8_t(i * factor + offset);
    return table;
}

std::vector<int> entries(const XCLookUpTable& table) { return {table.Get32BitTable(), table.Get32BitTable() + 256}; }

/// rule(i) for every entry.
template <class Rule>
std::vector<int> expected(Rule rule) {
    std::vector<int> result;
    for (int i = 0; i < 256; ++i)
        result.push_back(std::uint8_t(rule(i)));
    return result;
}

} // namespace

TEST(LookUpTable, EachTypeHasOneGetter) {
    XCLookUpTable table;
    EXPECT_EQ(table.Get32BitTable(), nullptr);
    EXPECT_EQ(table.Get64BitTable(), nullptr);
    table.Create(1);
    ASSERT_NE(table.Get32BitTable(), nullptr);
    EXPECT_EQ(table.Get64BitTable(), nullptr);
    EXPECT_EQ(table.Get32BitTable()[200], 200);
    table.Create(2);
    EXPECT_EQ(table.Get32BitTable(), nullptr);
    ASSERT_NE(table.Get64BitTable(), nullptr);
    EXPECT_EQ(table.Get64BitTable()[60000], 60000);
    table.Create(3);
    EXPECT_EQ(table.Get32BitTable(), nullptr);
    EXPECT_EQ(table.Get64BitTable(), nullptr);
    EXPECT_EQ(table.GetMemSize(), 256u);
    table.Destroy();
    EXPECT_EQ(table.GetMemSize(), 0u);
}

TEST(LookUpTable, ReverseMirrorsAndInverts) {
    auto reversed = [](int mirror, int invert) {
        XCLookUpTable table = curve(3, 7);
        table.Reverse(mirror, invert);
        return entries(table);
    };
    EXPECT_EQ(reversed(0, 0), expected([](int i) { return i * 3 + 7; }));
    EXPECT_EQ(reversed(1, 0), expected([](int i) { return (255 - i) * 3 + 7; }));
    EXPECT_EQ(reversed(0, 1), expected([](int i) { return 255 - (i * 3 + 7) % 256; }));
    EXPECT_EQ(reversed(1, 1), expected([](int i) { return 255 - ((255 - i) * 3 + 7) % 256; }));
}

TEST(LookUpTable, ReverseOfBothKeepsTheIdentityAlsoIn16Bits) {
    XCLookUpTable table;
    table.Create(2);
    table.Reverse(1, 1);
    for (int i = 0; i < 65536; i += 4369)
        EXPECT_EQ(table.Get64BitTable()[i], i);
    table.Reverse(0, 1);
    EXPECT_EQ(table.Get64BitTable()[0], 65535);
    EXPECT_EQ(table.Get64BitTable()[60000], 5535);
}

TEST(LookUpTable, MergeAppliesThisCurveFirst) {
    XCLookUpTable table = curve(3, 7);
    XCLookUpTable other = curve(5, 1);
    table.Merge(other);
    EXPECT_EQ(entries(table), expected([](int i) { return (i * 3 + 7) * 5 + 1; }));
    EXPECT_EQ(entries(other), expected([](int i) { return i * 5 + 1; }));
}

TEST(LookUpTable, MergeOfTwoInversionsIsTheIdentity) {
    XCLookUpTable table = curve(1, 0);
    XCLookUpTable other = curve(1, 0);
    table.Reverse(0, 1);
    other.Reverse(0, 1);
    table.Merge(other);
    EXPECT_EQ(entries(table), expected([](int i) { return i; }));
}

TEST(LookUpTable, MergeTakesTheOtherTypeFromTheIdentity) {
    XCLookUpTable table = curve(3, 7);
    XCLookUpTable wide;
    wide.Create(2);
    wide.Reverse(0, 1);
    table.Merge(wide);
    ASSERT_NE(table.Get64BitTable(), nullptr);
    EXPECT_EQ(table.Get64BitTable()[1], 65534);
}

TEST(LookUpTable, MergeWithItselfComposesTheEntriesBeforeTheCall) {
    XCLookUpTable table = curve(3, 7);
    table.Merge(table);
    EXPECT_EQ(entries(table), expected([](int i) { return (i * 3 + 7) * 3 + 7; }));
}

TEST(LookUpTable, MergeOfTwoMayNameThisTable) {
    auto composed = expected([](int i) { return (i * 3 + 7) * 5 + 1; });
    XCLookUpTable table;
    XCLookUpTable first = curve(3, 7);
    XCLookUpTable second = curve(5, 1);
    table.Merge(first, second);
    EXPECT_EQ(entries(table), composed);
    XCLookUpTable isSecond = second;
    isSecond.Merge(first, isSecond);
    EXPECT_EQ(entries(isSecond), composed);
    XCLookUpTable isFirst = first;
    isFirst.Merge(isFirst, second);
    EXPECT_EQ(entries(isFirst), composed);
}

TEST(LookUpTable, ATableOfNoTypeDestroysACopyAndChangesNoMerge) {
    XCLookUpTable none;
    XCLookUpTable table = curve(3, 7);
    table.Merge(none);
    EXPECT_EQ(entries(table), expected([](int i) { return i * 3 + 7; }));
    table.Copy(none);
    EXPECT_EQ(table.Get32BitTable(), nullptr);
    none.Reverse(1, 1);
    none.Init();
    EXPECT_EQ(none.GetMemSize(), 0u);
}

TEST(LookUpTable, MemoryThatIsTooSmallIsNoTable) {
    XCLookUpTable table = curve(3, 7);
    XCLookUpTable other = curve(1, 1);
    table.Alloc(16);
    table.Init();
    table.Reverse(0, 1);
    EXPECT_EQ(table.Get32BitTable(), nullptr);
    other.Merge(table);
    EXPECT_EQ(entries(other), expected([](int i) { return i + 1; }));
    table.Copy(other);
    EXPECT_EQ(entries(table), entries(other));
}

TEST(LookUpTable, CopiesHaveEntriesOfTheirOwn) {
    XCLookUpTable table = curve(3, 7);
    XCLookUpTable copy = table;
    XCLookUpTable assigned;
    assigned.Create(2);
    assigned = table;
    table.Init();
    EXPECT_EQ(entries(copy), expected([](int i) { return i * 3 + 7; }));
    EXPECT_EQ(entries(assigned), entries(copy));
}
