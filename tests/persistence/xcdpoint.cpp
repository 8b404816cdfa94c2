#include "ovwcmn/xcdpoint.h"
#include "ovwcmn/xcarchivemem.h"
#include "support/scopes.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

using ovw::test::errorOf;
using ovw::test::TempFolder;

XCDPoint row(int count) {
    XCDPoint set;
    for (int i = 0; i < count; ++i)
        set.AddPoint(tagPOINTD{i + 0.5, -i - 0.5});
    return set;
}

std::string shown(const XCDPoint& set) {
    std::string text;
    for (int i = 0; i < set.GetCount(); ++i) {
        tagPOINTD real;
        tagPOINT whole;
        set.GetPoint(real, i);
        set.GetPoint(whole, i);
        char part[80];
        std::snprintf(part, sizeof part, "(%g,%g|%d,%d)", real.x, real.y, whole.x, whole.y);
        text += part;
    }
    return text;
}

TEST(XCDPoint, MirrorsRealPointsInWholeOnes) {
    XCDPoint set;
    set.AddPoint(tagPOINTD{1.5, -0.5});
    EXPECT_EQ(shown(set), "(1.5,-0.5|135,-45)");
    set.AddPoint(tagPOINT{7, 8});
    set.SetPoint(tagPOINT{1, 2}, 0);
    EXPECT_EQ(shown(set), "(1.5,-0.5|1,2)(0,0|7,8)");
    set.Offset(tagPOINT{1, 1}, -1);
    set.Offset(tagPOINTD{0.5, 0}, 1);
    EXPECT_EQ(shown(set), "(1.5,-0.5|2,3)(0.5,0|45,0)");
    set.Offset(tagPOINTD{1, 1}, -1);
    EXPECT_EQ(shown(set), "(2.5,0.5|225,45)(1.5,1|135,90)");
    set.SetPoint(tagPOINTD{1e300, NAN}, 0);
    set.Offset(tagPOINT{1, 0}, 0);
    tagPOINT whole;
    set.GetPoint(whole, 0);
    EXPECT_EQ(whole.x, std::numeric_limits<int>::min()) << "clamped, then wrapped by the offset";
    EXPECT_EQ(whole.y, 0);
}

TEST(XCDPoint, HoldsTenPointsAndRemovesThem) {
    XCDPoint set = row(12);
    EXPECT_EQ(set.GetCount(), 10);
    set.RemovePoint(9);
    set.RemovePoint(50);
    set.RemovePoint(-2);
    EXPECT_EQ(shown(set), shown(row(8)));
    XCDPoint three = row(3);
    three.RemovePoint(0);
    EXPECT_EQ(shown(three), "(1.5,-1.5|135,-135)(2.5,-2.5|225,-225)");
    three.RemovePoint(-1);
    three.RemovePoint(0);
    EXPECT_EQ(three.GetCount(), 0);
    for (const int index : {-1, 10, 1000}) {
        set.SetPoint(tagPOINTD{9, 9}, index);
        set.SetPoint(tagPOINT{9, 9}, index);
        set.Offset(tagPOINT{1, 1}, index == -1 ? -2 : index);
    }
    EXPECT_EQ(shown(set), shown(row(8)));
}

const std::string cnOnePoint("WDPF\0\0\0\1\x3F\xF8\0\0\0\0\0\0\xBF\xE0\0\0\0\0\0\0\0\0\0\7", 28);
const std::string cnExtension("\0\0\0\x08\0\0\0\x32\0\x12\x34\x56", 12);

TEST(XCDPoint, WritesItsFileToTheByte) {
    const TempFolder folder;
    XCDPoint set;
    set.AddPoint(tagPOINTD{1.5, -0.5});
    set.SetAngle(7);
    set.SetOpacity(50);
    set.SetColor(0x123456);
    set.Save(folder.path("set"), 0);
    EXPECT_EQ(folder.read("set"), cnOnePoint + cnExtension);
    XCDPoint back = row(4);
    back.Open(folder.path("set"));
    EXPECT_EQ(shown(back), shown(set));
    EXPECT_EQ(back.GetAngle(), 7);
    EXPECT_EQ(back.GetOpacity(), 50);
    EXPECT_EQ(back.GetColor(), 0x123456u);

    folder.write("set", cnOnePoint);
    back.Open(folder.path("set"));
    EXPECT_EQ(back.GetOpacity(), 100);
    EXPECT_EQ(back.GetColor(), 0x969696u);
}

TEST(XCDPoint, ReadsLargerFilesAndDropsWhatItCannotHold) {
    const TempFolder folder;
    std::string many("WDPF\0\0\0\x0C", 8);
    for (int i = 0; i < 12; ++i)
        many += cnOnePoint.substr(8, 16);
    folder.write("set", many + cnOnePoint.substr(24) + std::string("\0\0\0\x0A", 4) + cnExtension.substr(4) + "??");
    XCDPoint set;
    set.Open(folder.path("set"));
    EXPECT_EQ(set.GetCount(), 10);
    EXPECT_EQ(set.GetAngle(), 7);
    EXPECT_EQ(set.GetOpacity(), 50);
}

TEST(XCDPoint, KeepsWhatItHoldsWhenAFileIsBad) {
    const TempFolder folder;
    const std::string whole = cnOnePoint + cnExtension;
    XCDPoint set = row(4);
    set.SetOpacity(3);
    const auto opened = [&](const std::string& bytes) {
        folder.write("set", bytes);
        const int code = errorOf([&] { set.Open(folder.path("set")); });
        EXPECT_EQ(shown(set), shown(row(4)));
        EXPECT_EQ(set.GetOpacity(), 3);
        return code;
    };
    for (std::size_t length = 0; length < whole.size(); ++length)
        if (length != cnOnePoint.size()) {
            const int code = opened(whole.substr(0, length));
            EXPECT_TRUE(code == 0x20010008 || code == 0x2001000B) << length;
        }
    EXPECT_EQ(opened("WDPG" + whole.substr(4)), 0x2001000B);
    EXPECT_EQ(opened("WDPF\xFF\xFF\xFF\xFF" + whole.substr(8)), 0x2001000B);
    EXPECT_EQ(opened("WDPF\x7F\xFF\xFF\xFF" + whole.substr(8)), 0x20010008);
    EXPECT_EQ(opened(cnOnePoint + std::string("\0\0\0\4\0\0\0\0", 8)), 0x2001000B);
    XCArchiveMem empty;
    EXPECT_EQ(errorOf([&] { set.Serialize(empty, 0); }), 0x20010008);
    EXPECT_EQ(set.GetCount(), 4);
}

} // namespace
