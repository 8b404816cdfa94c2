#include "ovwcmn/xcmatrix.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

const XCMatrix2D s_general(2, 3, 5, 7, 11, 13, 17, 19, 23);

void expectNear(const XCMatrix2D& actual, const XCMatrix2D& expected) {
    const double a[] = {actual.m00, actual.m01, actual.m02, actual.m10, actual.m11,
                        actual.m12, actual.m20, actual.m21, actual.m22};
    const double e[] = {expected.m00, expected.m01, expected.m02, expected.m10, expected.m11,
                        expected.m12, expected.m20, expected.m21, expected.m22};
    for (int i = 0; i < 9; ++i)
        EXPECT_NEAR(a[i], e[i], 1e-12) << "element " << i;
}

void expectPoint(const XCPointD& actual, double x, double y) {
    EXPECT_NEAR(actual.x, x, 1e-12);
    EXPECT_NEAR(actual.y, y, 1e-12);
}

TEST(XCMatrix2D, ProductPutsTheArgumentOnTheLeft) {
    XCMatrix2D matrix(1, 2, 3, 4, 5, 6, 7, 8, 9);
    matrix *= s_general;
    expectNear(matrix, XCMatrix2D(49, 59, 69, 142, 173, 204, 254, 313, 372));
    matrix = s_general;
    matrix *= matrix;
    expectNear(matrix, XCMatrix2D(110, 134, 164, 312, 389, 477, 558, 697, 861));
}

TEST(XCMatrix2D, ElementWiseOperatorsReachTheThirdRow) {
    XCMatrix2D matrix = s_general;
    matrix += XCMatrix2D(1, 1, 1, 1, 1, 1, 1, 1, 1);
    matrix *= 2.0;
    EXPECT_TRUE(matrix == XCMatrix2D(6, 8, 12, 16, 24, 28, 36, 40, 48));
    matrix /= 2.0;
    matrix -= s_general;
    EXPECT_TRUE(matrix == XCMatrix2D(1, 1, 1, 1, 1, 1, 1, 1, 1));
    EXPECT_TRUE(matrix != XCMatrix2D(1, 1, 1, 1, 1, 1, 1, 1, std::nextafter(1, 2)));
}

TEST(XCMatrix2D, PointsAreMovedVectorsAreNot) {
    expectPoint(s_general.MultiplyPoint(XCPointD(10, 100)), 2 * 10 + 3 * 100 + 5, 7 * 10 + 11 * 100 + 13);
    expectPoint(s_general.MultiplyVector(XCPointD(10, 100)), 2 * 10 + 3 * 100, 7 * 10 + 11 * 100);
    // In floats 16777217 is 16777216, and nothing is left.
    const XCMatrix2D large(16777217, 0, -16777216, 0, 1, 0, 0, 0, 1);
    EXPECT_EQ(large.MultiplyPoint(XCPointF(1, 0)).x, 0.0f);
    EXPECT_EQ(large.MultiplyPoint(XCPointD(1, 0)).x, 1.0);
}

TEST(XCMatrix2D, IntegerPointsTruncateTowardZeroAndClamp) {
    XCMatrix2D half;
    half.Scale(0.5, 0.5);
    for (const int one : {1, -1}) {
        EXPECT_EQ(half.MultiplyPoint(XCPoint(one, one)), XCPoint(0, 0));
        EXPECT_EQ(half.MultiplyVector(XCPoint(3 * one, one)), XCPoint(one, 0));
    }
    XCMatrix2D huge;
    huge.Scale(1e20, -1e20);
    EXPECT_EQ(huge.MultiplyPoint(XCPoint(1, 1)), XCPoint(2147483647, -2147483647 - 1));
}

TEST(XCMatrix2D, BoundsSurroundTheMappedCorners) {
    const XCRectD negative(-9.5, -8, -3, -2.25);
    EXPECT_EQ(XCMatrix2D().MultiplyBound(negative), negative);
    XCMatrix2D turned;
    turned.Rotate(90);
    turned.RemoveMatRoundError();
    EXPECT_EQ(turned.MultiplyBound(XCRectD(1, 2, 5, 10)), XCRectD(-10, 1, -2, 5));
    EXPECT_EQ(turned.MultiplyBound(XCRectF(1, 2, 5, 10)), XCRectF(-10, 1, -2, 5));
    turned.Scale(0.5, 0.5);
    EXPECT_EQ(turned.MultiplyBound(XCRect(1, 3, 5, 9)), XCRect(-4, 0, -1, 2));
}

TEST(XCMatrix2D, OperationsActInTheOrderOfTheirCalls) {
    XCMatrix2D matrix;
    matrix.Transfer(5, 7);
    expectPoint(matrix.MultiplyPoint(XCPointD(0, 0)), 5, 7);
    matrix.Scale(2, 2);
    expectPoint(matrix.MultiplyPoint(XCPointD(0, 0)), 10, 14);
    expectPoint(matrix.GetTransfer(), 10, 14);
}

TEST(XCMatrix2D, TransformsActAboutTheirCentre) {
    XCMatrix2D scaled;
    scaled.Scale(3, -2, XCPoint(10, 20));
    expectPoint(scaled.MultiplyPoint(XCPointD(10, 20)), 10, 20);
    expectPoint(scaled.MultiplyPoint(XCPointD(11, 22)), 13, 16);
    XCMatrix2D turned;
    turned.Rotate(90, XCPointF(10, 20));
    expectPoint(turned.MultiplyPoint(XCPointD(11, 20)), 10, 21);
    XCMatrix2D sheared;
    sheared.Shear(2, 0.5, XCPointD(10, 20));
    expectPoint(sheared.MultiplyPoint(XCPointD(11, 23)), 10 + 1 + 2 * 3, 20 + 3 + 0.5 * 1);
}

TEST(XCMatrix2D, TransformsMultiplyTheThirdRow) {
    XCMatrix2D moved = s_general;
    moved.Transfer(XCPoint(10, 100));
    expectNear(moved, XCMatrix2D(172, 193, 235, 1707, 1911, 2313, 17, 19, 23));
    XCMatrix2D scaled = s_general;
    scaled.Scale(2, 3);
    expectNear(scaled, XCMatrix2D(4, 6, 10, 21, 33, 39, 17, 19, 23));
    XCMatrix2D sheared = s_general;
    sheared.Shear(2, 3, XCPointD(0, 0));
    expectNear(sheared, XCMatrix2D(16, 25, 31, 13, 20, 28, 17, 19, 23));
}

TEST(XCMatrix2D, DeterminantAndInverseUseAllNineElements) {
    EXPECT_EQ(s_general.Determinant(), -78);
    XCMatrix2D inverse;
    ASSERT_EQ(s_general.CalcInverse(inverse), 1);
    XCMatrix2D product = s_general;
    product *= inverse;
    expectNear(product, XCMatrix2D());
    XCMatrix2D inPlace = s_general;
    ASSERT_EQ(inPlace.CalcInverse(inPlace), 1);
    EXPECT_TRUE(inPlace == inverse);
    expectNear(s_general.Transpose(), XCMatrix2D(2, 7, 17, 3, 11, 19, 5, 13, 23));
}

TEST(XCMatrix2D, SingularMatrixHasNoInverse) {
    XCMatrix2D out = s_general;
    EXPECT_EQ(XCMatrix2D(1, 2, 3, 0, 0, 0, 4, 5, 6).CalcInverse(out), 0);
    EXPECT_TRUE(out == s_general);
}

TEST(XCMatrix2D, KnowsMirrorsAndScale) {
    XCMatrix2D matrix;
    EXPECT_EQ(matrix.IsReverseMatrix(), 0);
    EXPECT_EQ(matrix.GetScale(), 1);
    matrix.Scale(-3, 4);
    EXPECT_EQ(matrix.IsReverseMatrix(), 1);
    matrix.Shear(0, 4.0 / 3, XCPointD());
    matrix.Transfer(100, 100);
    EXPECT_NEAR(matrix.GetScale(), 5, 1e-12);
}

TEST(XCMatrix2D, RoundErrorsAreRemovedOnBothSides) {
    XCMatrix2D matrix(1 + 0.9e-08, 1 - 0.9e-08, -1 + 0.9e-08, -1 - 0.9e-08, 1.1e-08, -1.1e-08, 0.5, -1e-17, 2);
    matrix.RemoveMatRoundError();
    EXPECT_TRUE(matrix == XCMatrix2D(1, 1, -1, -1, 1.1e-08, -1.1e-08, 0.5, 0, 2));
    XCMatrix2D turned;
    turned.Rotate(90);
    turned.RemoveMatRoundError();
    EXPECT_TRUE(turned == XCMatrix2D(0, -1, 0, 1, 0, 0, 0, 0, 1));
}

} // namespace
