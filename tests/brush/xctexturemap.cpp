#include "ovwcmn/xctexturemap.h"

#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcsimpleimage.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace {

using ovw::test::TestImage;
using ovw::test::TestStore;

/// A picture whose pixels all differ from their neighbours and none of which is empty.
void fillWithPicture(TestImage& image) {
    for (int y = 0; y < image->GetHeight(); y++)
        for (int x = 0; x < image->GetWidth(); x++)
            image.setValue(x, y, static_cast<std::uint32_t>((x * 37 + y * 91) % 255 + 1));
}

/// Maps into an 8-bit target of its own.
class Mapping {
public:
    Mapping(TestStore& store, int width, int height, int targetWidth, int targetHeight)
        : source(store, 8, width, height), target(store, 8, targetWidth, targetHeight) {
        fillWithPicture(source);
        m_image.CopyFromOffscreen(source.get());
        m_mixer.SetDstOffscreen(target.get());
        m_mixer.SetColor(0xFF000000);
        m_mixer.SetDrawCompositioin(XCFastPixelMixer::Normal);
    }

    int rect(double cx, double cy, double angle, double sx, double sy, int antialias) {
        return rectPart(cx, cy, angle, sx, sy, antialias, {0, 0, source->GetWidth(), source->GetHeight()});
    }
    int rectPart(double cx, double cy, double angle, double sx, double sy, int antialias, const XCRect& part) {
        const XCVOffscreenAutoLock lock(target.get(), 1);
        const XCAutoLockSimpleImage sourceLock(&m_image);
        return XCTextureMap(&m_mixer, antialias)
            .Texmap(target.get(), cx, cy, angle, sx, sy, &m_image, part.left, part.top, part.Width(), part.Height());
    }
    int polygon(XCTexMapVertex vertices, int antialias = 0) {
        const XCVOffscreenAutoLock lock(target.get(), 1);
        const XCAutoLockSimpleImage sourceLock(&m_image);
        return XCTextureMap(&m_mixer, antialias).Texmap(target.get(), &m_image, &vertices, 0, !antialias, 0);
    }
    /// How many pixels of an area differ from the source laid at (x, y), and from nothing around it.
    int differencesAt(int x, int y) const {
        int differences = 0;
        for (int ty = 0; ty < target->GetHeight(); ty++)
            for (int tx = 0; tx < target->GetWidth(); tx++) {
                const bool isInside = tx >= x && tx < x + source->GetWidth() && ty >= y && ty < y + source->GetHeight();
                differences += target.value(tx, ty) != (isInside ? source.value(tx - x, ty - y) : 0);
            }
        return differences;
    }

    TestImage source;
    TestImage target;

private:
    XCSimpleImage m_image;
    XCFastPixelMixer m_mixer;
};

XCTexMapVertex quad(double left, double top, double right, double bottom, double u, double v) {
    XCTexMapVertex vertices;
    vertices.Add(left, top, 0, 0);
    vertices.Add(right, top, u, 0);
    vertices.Add(right, bottom, u, v);
    vertices.Add(left, bottom, 0, v);
    return vertices;
}

TEST(XCTexMapVertex, KeepsFourVertices) {
    XCTexMapVertex vertices = quad(0, 0, 1, 1, 1, 1);
    EXPECT_EQ(vertices.Add(9, 9, 9, 9), 0);
    EXPECT_EQ(vertices.count, 4);
    double x = 0.0;
    double y = 0.0;
    vertices.GetDest(&x, &y, 2);
    EXPECT_EQ(x + y, 2.0);
    EXPECT_EQ(vertices.Vertex(4), nullptr);
    EXPECT_EQ(vertices.Vertex(-1), nullptr);
}

TEST(XCTextureMap, CopiesPixelForPixelAtScaleOne) {
    TestStore store;
    for (int antialias : {0, 1}) {
        Mapping upright(store, 7, 6, 300, 40);
        EXPECT_EQ(upright.rect(256.5, 23.0, 0.0, 1.0, 1.0, antialias), 1);
        EXPECT_EQ(upright.differencesAt(253, 20), 0) << antialias;
        Mapping corners(store, 7, 6, 300, 40);
        EXPECT_EQ(corners.polygon(quad(253, 20, 260, 26, 7, 6), antialias), 1);
        EXPECT_EQ(corners.differencesAt(253, 20), 0) << antialias;
    }
}

TEST(XCTextureMap, TakesTheMeanOfAPixelsQuarters) {
    TestStore store;
    Mapping mapping(store, 4, 4, 20, 20);
    mapping.rect(10.0, 10.0, 0.0, 0.5, 0.5, 1);
    for (int y = 0; y < 2; y++)
        for (int x = 0; x < 2; x++) {
            std::uint32_t sum = 0;
            for (int i = 0; i < 4; i++)
                sum += mapping.source.value(2 * x + i % 2, 2 * y + i / 2);
            EXPECT_NEAR(mapping.target.value(9 + x, 9 + y), sum / 4, 1);
        }
}

TEST(XCTextureMap, ShowsNoBlockBorder) {
    TestStore store;
    for (int antialias : {0, 1})
        for (double angle : {0.0, 0.3, 1.7, 4.0}) {
            Mapping inside(store, 37, 23, 700, 700);
            Mapping across(store, 37, 23, 700, 700);
            inside.rect(384.375, 384.625, angle, 3.3, 2.1, antialias);
            across.rect(512.375, 512.625, angle, 3.3, 2.1, antialias);
            int differences = 0;
            for (int y = -100; y < 100; y++)
                for (int x = -100; x < 100; x++)
                    differences += inside.target.value(384 + x, 384 + y) != across.target.value(512 + x, 512 + y);
            EXPECT_EQ(differences, 0) << antialias << ' ' << angle;
        }
}

TEST(XCTextureMap, MappingsThatShareAnEdgeLeaveNoGap) {
    TestStore store;
    Mapping mapping(store, 8, 8, 100, 100);
    const double left[][2] = {{10, 10}, {47.3, 20.7}, {51.9, 80.1}, {12, 90}};
    const double right[][2] = {{47.3, 20.7}, {90, 10}, {90, 90}, {51.9, 80.1}};
    for (const auto& corners : {left, right}) {
        XCTexMapVertex vertices;
        for (int i = 0; i < 4; i++)
            vertices.Add(corners[i][0], corners[i][1], 1 + 6 * (i % 3 != 0), 1 + 6 * (i > 1));
        EXPECT_EQ(mapping.polygon(vertices), 1);
    }
    for (int y = 25; y < 75; y++)
        for (int x = 20; x < 80; x++)
            EXPECT_NE(mapping.target.value(x, y), 0u) << x << ' ' << y;
}

TEST(XCTextureMap, NeighboursOfASourceRectangleDoNotBleedIn) {
    TestStore store;
    Mapping mapping(store, 9, 9, 40, 40);
    mapping.rectPart(20.1, 20.1, 0.0, 1.0, 1.0, 1, {3, 3, 6, 6});
    int covered = 0;
    for (int y = 0; y < 40; y++)
        for (int x = 0; x < 40; x++)
            covered += mapping.target.value(x, y) != 0;
    EXPECT_EQ(covered, 4); // those whose four samples all lie in the rectangle from 18.6 to 21.6
}

TEST(XCTextureMap, DrawsNothingFromBadInput) {
    TestStore store;
    Mapping mapping(store, 5, 5, 50, 50);
    const double cnNaN = std::numeric_limits<double>::quiet_NaN();
    const double cnInfinite = std::numeric_limits<double>::infinity();
    for (double bad : {cnNaN, cnInfinite, -cnInfinite, 1e300}) {
        EXPECT_EQ(mapping.rect(bad, 20, 0.0, 1, 1, 1), 0);
        EXPECT_EQ(mapping.rect(20, 20, 0.0, bad, 1, 0), 0);
        EXPECT_EQ(mapping.polygon(quad(bad, 0, 5, 5, 5, 5)), 0);
        EXPECT_EQ(mapping.polygon(quad(0, 0, 5, 5, bad, 5)), 0);
    }
    EXPECT_EQ(mapping.rect(20, 20, cnNaN, 1, 1, 1), 0);
    EXPECT_EQ(mapping.rect(20, 20, 0.5, 0, 1, 1), 0);
    EXPECT_EQ(mapping.rect(20, 20, 0.5, -1, 1, 1), 0);
    EXPECT_EQ(mapping.rect(500, 500, 0.5, 1, 1, 1), 0);
    EXPECT_EQ(mapping.rectPart(20, 20, 0, 1, 1, 1, {2, 2, 2, 4}), 0);
    XCTexMapVertex line;
    line.Add(0, 0, 0, 0);
    line.Add(20, 20, 5, 5);
    EXPECT_EQ(mapping.polygon(line), 0);
    EXPECT_EQ(mapping.differencesAt(-5, -5), 0);
}

TEST(XCTextureMap, NeedsALockedSourceAndGivesTheStyleBack) {
    TestStore store;
    TestImage source(store, 8, 4, 4);
    TestImage target(store, 8, 20, 20);
    fillWithPicture(source);
    XCSimpleImage image;
    image.CopyFromOffscreen(source.get());
    XCFastPixelMixer mixer;
    mixer.SetDstOffscreen(target.get());
    mixer.SetColor(0xFF000000);
    const XCVOffscreenAutoLock lock(target.get(), 1);
    EXPECT_EQ(XCTextureMap(&mixer, 1).Texmap(target.get(), 10, 10, 0, 1, 1, &image, 0, 0, 4, 4), 0);
    const XCAutoLockSimpleImage sourceLock(&image);
    EXPECT_EQ(XCTextureMap(&mixer, 1).Texmap(target.get(), 10, 10, 0, 1, 1, &image, 0, 0, 4, 4), 1);
    EXPECT_EQ(mixer.GetStyleFlag(XCFastPixelMixer::STYLE_ANTIALIAS), 0);
}

} // namespace
