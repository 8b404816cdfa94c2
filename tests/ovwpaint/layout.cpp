#include "layout.h"

#include "failure.h"

#include <gtest/gtest.h>

namespace ovwpaint::test {

namespace {

const InkSurvey cnSurvey{-100.0, 50.0, 300.0, 150.0, 9}; // 400 x 100

double mappedX(const Layout& layout, double x) {
    const PathMapping mapping = layout.mapping(4.0);
    return (x - mapping.originX) * mapping.scale / 4.0;
}

TEST(Layout, TakesTheDrawingsOwnSizeWithRoomForTheBrush) {
    Brush brush;
    brush.size.size = 40;
    const Layout layout = layOut(cnSurvey, brush, {});
    EXPECT_EQ(layout.scale, 1.0);
    EXPECT_GE(mappedX(layout, -100), 20.0);
    EXPECT_LE(mappedX(layout, 300), layout.width - 20.0);
    EXPECT_LE(layout.width, 400 + 2 * 45);
    const Layout twice = layOut(cnSurvey, brush, {{}, {}, 2.0});
    EXPECT_NEAR(twice.width, 2 * layout.width, 10);
    EXPECT_NEAR(mappedX(twice, 300) - mappedX(twice, -100), 800.0, 1e-9);
}

TEST(Layout, FitsTheDrawingIntoASize) {
    const Brush brush;
    const Layout wide = layOut(cnSurvey, brush, {1000, 1000, {}});
    EXPECT_EQ(wide.width, 1000);
    EXPECT_EQ(wide.height, 1000);
    EXPECT_GT(wide.scale, 2.3);
    EXPECT_GE(mappedX(wide, -100), 0.0);
    EXPECT_NEAR(mappedX(wide, 100), 500.0, 1e-9) << "centred";
    const Layout one = layOut(cnSurvey, brush, {1000, {}, {}});
    EXPECT_EQ(one.width, 1000);
    EXPECT_NEAR(one.height, 267, 1) << "the drawing and its margins keep their shape";
    const Layout fixed = layOut(cnSurvey, brush, {50, 60, 3.0});
    EXPECT_EQ(fixed.scale, 3.0);
    EXPECT_NEAR(mappedX(fixed, 100), 25.0, 1e-9);
}

TEST(Layout, RefusesWhatIsNoPicture) {
    const InkSurvey huge{0.0, 0.0, 1.0e9, 10.0, 2};
    EXPECT_THROW(layOut(huge, Brush(), {}), Failure);
    EXPECT_NO_THROW(layOut(huge, Brush(), {800, 600, {}}));
    EXPECT_THROW(layOut(InkSurvey(), Brush(), {}), Failure);
    EXPECT_THROW(layOut(InkSurvey(), Brush(), {800, {}, {}}), Failure);
    EXPECT_EQ(layOut(InkSurvey(), Brush(), {800, 600, {}}).width, 800);
    const InkSurvey dot{5.0, 5.0, 5.0, 5.0, 1};
    EXPECT_LE(layOut(dot, Brush(), {50000, 50000, {}}).scale, cnMaxScale);
}

} // namespace

} // namespace ovwpaint::test
