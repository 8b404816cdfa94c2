#include "plane.h"

#include "ovwcmn/vxmath.h"

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
        paintThreeBlocks(from, 5);
        scribble(to, XCRect(90, 90, 130, 130), 9);
    }
};

template <class Visit>
void forEachPixel(const Plane& to, const Transfer& t, Visit visit) {
    for (std::int64_t y = std::max(t.y, 0); y < std::min<std::int64_t>(std::int64_t(t.y) + t.h, to.height()); ++y)
        for (std::int64_t x = std::max(t.x, 0); x < std::min<std::int64_t>(std::int64_t(t.x) + t.w, to.width()); ++x)
            visit(int(x), int(y), x - t.x, y - t.y);
}

void put(Plane& to, int x, int y, std::uint32_t colour, bool merge) {
    if (merge)
        to.mergeBehind(x, y, colour);
    else
        to.write32(x, y, colour);
}

/// `whole`: as the All forms do it.
void referenceReduce(Plane& to, Plane& from, const Transfer& t, int f, bool merge, bool whole = false) {
    const bool density = to.depth() == 8 && from.depth() == 8, counts = whole && to.depth() == 1 && from.depth() == 1;
    const bool solid = whole && from.depth() == 2 && (to.depth() == 16 || to.depth() == 32);
    forEachPixel(to, t, [&](int x, int y, std::int64_t i, std::int64_t j) {
        if (t.sx + f * i >= from.width() || t.sy + f * j >= from.height())
            return;
        ColourSums sums;
        std::int64_t bytes = 0; // of no meaning for colours
        bool exists = false;
        for (int dy = 0; dy < f; ++dy)
            for (int dx = 0; dx < f; ++dx) {
                const std::int64_t sx = t.sx + f * i + dx, sy = t.sy + f * j + dy;
                if (!from.exists(sx, sy))
                    continue;
                exists = true;
                bytes += from.stored(sx, sy);
                const std::uint32_t colour = from.colour(sx, sy);
                sums.add(solid && from.stored(sx, sy) >= 2 ? colour | 0xFF000000 : colour);
            }
        if (!exists)
            return;
        to.store(x, y, to.stored(x, y)); // the block exists now
        if (counts) {
            if (bytes > 127 >> (f == 2 ? 6 : f == 4 ? 4 : 2))
                to.store(x, y, 1);
        } else if (density && merge) {
            to.unite(x, y, bytes / (f * f));
        } else if (density) {
            to.store(x, y, std::uint32_t(bytes / (f * f)));
        } else if (const int n = int(sums.visible)) {
            put(to, x, y, pack(int(sums.alpha) / (f * f), int(sums.red) / n, int(sums.green) / n, int(sums.blue) / n),
                merge);
        }
    });
}

using Reduce = void (XCVOffscreen::*)(int, int, int, int, XCVOffscreen*, int, int, int);
using ReduceAll = void (XCVOffscreen::*)(XCVOffscreen*);

const struct {
    int factor;
    Reduce part;
    ReduceAll all;
} cnReducers[] = {
    {2, &XCVOffscreen::ChangeResolutionHalf, &XCVOffscreen::ChangeResolutionHalfAll},
    {4, &XCVOffscreen::ChangeResolutionQuarter, &XCVOffscreen::ChangeResolutionQuarterAll},
    {8, &XCVOffscreen::ChangeResolutionOctantal, &XCVOffscreen::ChangeResolutionOctantalAll},
};

TEST(VOffscreenReduce, AveragesSquaresOfEveryDepthIntoEveryOther) {
    const Transfer transfers[] = {
        {100, 95, 60, 50, 192, 184},              // squares inside blocks
        {100, 95, 60, 50, 195, 181},              // over their borders
        {240, 250, 40, 30, 189, 190},             // over borders of the destination, and beyond the source
        {-5, -7, INT_MAX, INT_MAX, 180, INT_MIN}, // far away
        {-3, -3, INT_MAX, INT_MAX, 190, 191},
    };
    for (int to : cnDepths)
        for (int from : cnDepths)
            for (const auto& reducer : cnReducers)
                for (int merge : {0, 1})
                    for (std::size_t i = std::size_t(to / 8 + from / 8 + merge) % 3; i < std::size(transfers); i += 3) {
                        const Transfer& t = transfers[i];
                        Pair p(to, from);
                        Plane expected(p.to), source(p.from);
                        referenceReduce(expected, source, t, reducer.factor, merge);
                        (p.to.get()->*reducer.part)(t.x, t.y, t.w, t.h, p.from.get(), t.sx, t.sy, merge);
                        ASSERT_EQ(expected.difference(p.to), "") << from << " to " << to << " by " << reducer.factor
                                                                 << " from " << t.sx << ", merge " << merge;
                    }
}

TEST(VOffscreenReduce, TakesWholeImagesOfEveryDepthIntoEveryOther) {
    for (int to : cnDepths)
        for (int from : cnDepths)
            for (const auto& reducer : cnReducers) {
                Pair p(to, from);
                Plane expected(p.to), source(p.from);
                const int f = reducer.factor;
                referenceReduce(expected, source, {0, 0, (cnWidth + f - 1) / f, (cnHeight + f - 1) / f, 0, 0}, f, false,
                                true);
                (p.to.get()->*reducer.all)(p.from.get());
                ASSERT_EQ(expected.difference(p.to), "") << from << " to " << to << " by " << f;
            }
}

TEST(VOffscreenReduce, ThinsAlphaWithoutDarkening) {
    TestStore store;
    TestImage from(store, 32, 2, 2), to(store, 32, 1, 1);
    from.setValue(0, 0, 0xFF0000FF);
    from.setValue(1, 1, 0xFF0000FF);
    to->ChangeResolutionHalfAll(from.get());
    EXPECT_EQ(to.value(0, 0), 0x7F0000FFu);
    TestImage ink(store, 8, 2, 2), half(store, 8, 1, 1);
    ink.setValue(0, 1, 255);
    ink.setValue(1, 1, 255);
    half->ChangeResolutionHalf(0, 0, 1, 1, ink.get(), 0, 0, 0);
    EXPECT_EQ(half.value(0, 0), 127u);
}

TEST(VOffscreenReduce, SkipsWhatWasNeverPainted) {
    TestStore store;
    TestImage from(store, 32, 40000, 40000), to(store, 32, 20000, 20000);
    from.setValue(30000, 39999, 0xFF102030);
    to->ChangeResolutionHalfAll(from.get());
    EXPECT_EQ(to->GetUsedMemory(0, 0), 262144u);
    EXPECT_EQ(to.value(15000, 19999), 0x3F102030u);
}

void referenceEnlarge(Plane& to, Plane& from, const Transfer& t, int f, bool merge) {
    forEachPixel(to, t, [&](int x, int y, std::int64_t i, std::int64_t j) {
        const std::int64_t sx = t.sx + i / f, sy = t.sy + j / f;
        if (!from.exists(sx, sy))
            return;
        if (to.depth() != 8 || from.depth() != 8)
            put(to, x, y, from.colour(sx, sy), merge);
        else if (merge)
            to.unite(x, y, int(from.stored(sx, sy)));
        else
            to.store(x, y, from.stored(sx, sy));
    });
}

TEST(VOffscreenEnlarge, RepeatsPixelsOfEveryDepthInEveryOther) {
    const Transfer transfers[] = {{30, 31, 250, 240, 200, 190}, {-3, 0, INT_MAX, 279, 210, 186}};
    for (int to : cnDepths)
        for (int from : cnDepths)
            for (int f : {2, 4})
                for (int merge : {0, 1}) {
                    const Transfer& t = transfers[(to / 8 + from / 8 + merge + f / 4) % 2];
                    Pair p(to, from);
                    Plane expected(p.to), source(p.from);
                    referenceEnlarge(expected, source, t, f, merge);
                    const Reduce enlarge =
                        f == 2 ? &XCVOffscreen::ChangeResolutionDouble : &XCVOffscreen::ChangeResolutionFourfold;
                    (p.to.get()->*enlarge)(t.x, t.y, t.w, t.h, p.from.get(), t.sx, t.sy, merge);
                    ASSERT_EQ(expected.difference(p.to), "")
                        << from << " to " << to << " times " << f << ", merge " << merge;
                }
}

TEST(VOffscreenEnlarge, AllIsTheWholeSource) {
    for (const int to : cnDepths)
        for (const int from : {8, 32}) {
            Pair twice(to, from), expectedTwice(to, from), fourfold(to, from), expectedFourfold(to, from);
            twice.to->ChangeResolutionDoubleAll(twice.from.get());
            expectedTwice.to->ChangeResolutionDouble(0, 0, 2 * cnWidth, 2 * cnHeight, expectedTwice.from.get(), 0, 0,
                                                     0);
            EXPECT_EQ(Plane(expectedTwice.to).difference(twice.to), "") << from << " to " << to;
            fourfold.to->ChangeResolutionFourfoldAll(fourfold.from.get());
            expectedFourfold.to->ChangeResolutionFourfold(0, 0, 4 * cnWidth, 4 * cnHeight, expectedFourfold.from.get(),
                                                          0, 0, 0);
            EXPECT_EQ(Plane(expectedFourfold.to).difference(fourfold.to), "") << from << " to " << to;
        }
}

TEST(VOffscreenEnlarge, StretchesStoredPixels) {
    for (int depth : cnDepths)
        for (int w : {77, 333}) {
            Pair p(depth, depth);
            Plane expected(p.to), source(p.from);
            const std::uint32_t missing = depth == 24 ? 0xFFFFFF : 0;
            std::vector<std::array<int, 3>> missed;
            forEachPixel(expected, {3, 4, w, 200, 0, 0}, [&](int x, int y, std::int64_t i, std::int64_t j) {
                const int sx = 170 + int(double(i) * (150.0 / w)), sy = 160 + int(double(j) * (133.0 / 200));
                if (source.exists(sx, sy))
                    expected.store(x, y, depth == 2 && source.stored(sx, sy) == 1 ? 0 : source.stored(sx, sy));
                else
                    missed.push_back({x, y, 0});
            });
            for (const auto& m : missed)
                if (expected.exists(m[0], m[1]))
                    expected.store(m[0], m[1], missing);
            p.to->StretchCopy(3, 4, w, 200, p.from.get(), 170, 160, 150, 133);
            EXPECT_EQ(expected.difference(p.to), "") << depth << " bits, width " << w;
        }
}

void referenceLow(Plane& to, Plane& from, const Transfer& t, std::int64_t sw, std::int64_t sh, bool merge) {
    std::vector<std::array<int, 2>> emptyInk;
    auto range = [](std::int64_t i, std::int64_t from0, std::int64_t size, std::int64_t sourceSize) {
        const std::int64_t first = from0 + i * sourceSize / size;
        return std::pair(first, size > sourceSize ? first + 1 : from0 + (i + 1) * sourceSize / size);
    };
    forEachPixel(to, t, [&](int x, int y, std::int64_t i, std::int64_t j) {
        const auto [x1, x2] = range(i, t.sx, t.w, sw);
        const auto [y1, y2] = range(j, t.sy, t.h, sh);
        ColourSums sums;
        double ink = 0;
        bool exists = false;
        for (std::int64_t sy = y1; sy < y2; ++sy)
            for (std::int64_t sx = x1; sx < x2; ++sx)
                if (from.exists(sx, sy)) {
                    exists = true;
                    ink += from.stored(sx, sy);
                    sums.add(from.colour(sx, sy));
                }
        const int n = int((x2 - x1) * (y2 - y1)), seen = int(sums.visible);
        if (to.depth() == 8 && from.depth() == 8) {
            const auto v = std::uint32_t(ink) / std::uint32_t(n);
            if (exists && (v || !merge))
                to.store(x, y, v);
            else if (exists)
                to.store(x, y, to.stored(x, y));
            else if (!merge)
                emptyInk.push_back({x, y});
            return;
        }
        if (exists)
            to.store(x, y, to.stored(x, y));
        if (seen && int(sums.alpha) / n)
            put(to, x, y,
                pack(int(sums.alpha) / n, int(sums.red) / seen, int(sums.green) / seen, int(sums.blue) / seen), merge);
    });
    for (const auto& p : emptyInk)
        if (to.exists(p[0], p[1]))
            to.store(p[0], p[1], 0);
}

TEST(VOffscreenLow, AveragesWholePixelsOrTakesTheNearest) {
    const struct {
        Transfer t;
        int sw, sh;
    } cases[] = {
        {{80, 85, 60, 50, 170, 160}, 171, 147},  // shrinks
        {{80, 85, 200, 190, 190, 185}, 131, 70}, // enlarges
        {{80, 85, 200, 40, 190, 160}, 131, 140}, // one of each
    };
    for (int to : cnDepths)
        for (int from : cnDepths)
            for (int merge : {0, 1}) {
                const auto& c = cases[(to / 8 + from / 8 + merge) % 3];
                Pair p(to, from);
                Plane expected(p.to), source(p.from);
                referenceLow(expected, source, c.t, c.sw, c.sh, merge);
                p.to->ChangeResolutionLow(c.t.x, c.t.y, c.t.w, c.t.h, p.from.get(), c.t.sx, c.t.sy, c.sw, c.sh, merge);
                ASSERT_EQ(expected.difference(p.to), "")
                    << from << " to " << to << ", " << c.t.w << " wide, merge " << merge;
            }
}

/// What is covered from a to b, with its weights.
struct Weighed {
    int first, last;
    double firstWeight, lastWeight;

    Weighed(double a, double b) : first(int(a)), last(int(b)), firstWeight(b - a), lastWeight(0) {
        if (first == last)
            return;
        firstWeight = 1 - (a - first);
        lastWeight = b - last;
        if (lastWeight == 0) {
            --last;
            lastWeight = last == first ? 0 : 1;
        }
    }
    double weight(int i) const { return i == first ? firstWeight : i == last ? lastWeight : 1; }
};

std::uint32_t referenceMean(Plane& from, const Weighed& columns, const Weighed& rows, int sx, int sy, double scale) {
    ColourSums sums;
    double ink = 0, presence = 0;
    for (int i = columns.first; i <= columns.last; ++i)
        for (int j = rows.first; j <= rows.last; ++j) {
            const bool exists = from.exists(sx + i, sy + j);
            if (!exists && (from.depth() != 24 || !from.isInside(sx + i, sy + j)))
                continue;
            const double weight = columns.weight(i) * rows.weight(j);
            const std::uint32_t stored = from.stored(sx + i, sy + j);
            ink += weight * (from.depth() == 2 ? stored == 3 : stored);
            presence += weight * (stored >= 2);
            sums.add(exists ? from.colour(sx + i, sy + j) : 0xFFFFFFFF, weight); // without alpha it shows white
        }
    auto byte = [](double v) { return std::min(255, vxDouble2Int(v)); };
    if (from.depth() == 1 || from.depth() == 8) {
        const int v = byte(ink * scale * (from.depth() == 1 ? 255 : 1));
        return v < 1 ? 0x00FFFFFF : std::uint32_t(v) << 24;
    }
    if (from.depth() == 2)
        return greyColour(255 - byte(ink * scale * 255), byte(presence * scale * 255));
    if (from.depth() == 24)
        return pack(255, byte(sums.red * scale), byte(sums.green * scale), byte(sums.blue * scale));
    if (sums.visible <= 0)
        return 0x00FFFFFF;
    return pack(byte(sums.alpha * scale), byte(sums.red / sums.visible), byte(sums.green / sums.visible),
                byte(sums.blue / sums.visible));
}

void referenceArea(Plane& to, Plane& from, const Transfer& t, int sw, int sh, bool merge) {
    const double kx = double(sw) / t.w, ky = double(sh) / t.h;
    const bool isBytes = to.depth() == 8 && (merge || (from.depth() != 16 && from.depth() != 32));
    std::vector<std::array<std::uint32_t, 3>> values;
    forEachPixel(to, t, [&](int x, int y, std::int64_t i, std::int64_t j) {
        const Weighed columns(double(i) * kx, double(i + 1) * kx), rows(double(j) * ky, double(j + 1) * ky);
        for (int c = columns.first; c <= columns.last; ++c)
            for (int r = rows.first; r <= rows.last; ++r)
                if (from.exists(t.sx + c, t.sy + r))
                    to.store(x, y, to.stored(x, y));
        values.push_back(
            {std::uint32_t(x), std::uint32_t(y), referenceMean(from, columns, rows, t.sx, t.sy, 1 / (kx * ky))});
    });
    for (const auto& [x, y, value] : values) {
        if (!to.exists(x, y))
            continue;
        if (!isBytes)
            put(to, int(x), int(y), value, merge);
        else if (!merge || value >> 24)
            to.store(int(x), int(y), value >> 24);
    }
}

TEST(VOffscreenArea, WeighsByCoveredArea) {
    const struct {
        Transfer t;
        int sw, sh;
    } cases[] = {
        {{80, 85, 56, 44, 171, 160}, 140, 110},  // 5 : 2, exact sums
        {{80, 85, 50, 40, 171, 160}, 137, 111},  // shrinks unevenly, over blocks
        {{60, 60, 210, 220, 200, 180}, 113, 97}, // enlarges
    };
    for (int to : cnDepths)
        for (int from : cnDepths)
            for (int merge : {0, 1}) {
                const auto& c = cases[(to / 8 + from / 8 + merge) % 3];
                Pair p(to, from);
                Plane expected(p.to), source(p.from);
                referenceArea(expected, source, c.t, c.sw, c.sh, merge);
                p.to->ChangeResolution(c.t.x, c.t.y, c.t.w, c.t.h, p.from.get(), c.t.sx, c.t.sy, c.sw, c.sh,
                                       CHANGE_RESOLUTION_HIGH, merge);
                ASSERT_EQ(expected.difference(p.to), "")
                    << from << " to " << to << ", " << c.t.w << " wide, merge " << merge;
            }
}

TEST(VOffscreenArea, OnePixelIsThatOfTheWholeImage) {
    for (int depth : cnDepths) {
        Pair p(32, depth);
        p.to->ChangeResolution(0, 0, 40, 40, p.from.get(), 190, 180, 90, 100, CHANGE_RESOLUTION_HIGH, 0);
        XCVOffscreenAutoLock lock(p.from.get(), 0);
        for (int i = 0; i < 40; ++i) {
            _XCRESOLUTIONTABLE columns, rows;
            XCVOffscreen::SetResolutionTable(&columns, i * 2.25, (i + 1) * 2.25);
            XCVOffscreen::SetResolutionTable(&rows, i * 2.5, (i + 1) * 2.5);
            std::uint32_t value = 0;
            p.from->CalcPixelValue(&columns, &rows, 190, 180, 1 / (2.25 * 2.5), value);
            EXPECT_EQ(value, p.to.value(i, i)) << depth << " bits, " << i;
        }
    }
}

TEST(VOffscreenArea, TableEntries) {
    const struct {
        double from, to;
        int start, end, count;
        double first, last;
    } cases[] = {{1.5, 3.0, 1, 2, 1, 0.5, 1.0},
                 {2.25, 2.75, 2, 2, 0, 0.5, 0.0},
                 {2.0, 3.0, 2, 2, 0, 1.0, 0.0},
                 {0.5, 2.25, 0, 2, 2, 0.5, 0.25}};
    for (const auto& c : cases) {
        _XCRESOLUTIONTABLE t;
        XCVOffscreen::SetResolutionTable(&t, c.from, c.to);
        EXPECT_TRUE(t.start == c.start && t.end == c.end && t.count == c.count && t.firstWeight == c.first &&
                    t.lastWeight == c.last)
            << c.from << " to " << c.to;
    }
}

/// What a call leaves of an image of one red pixel a block, to tell the ways of the dispatchers apart.
TEST(VOffscreenResolution, ChoosesTheWayByRatio) {
    const struct {
        int w, sw, mode;
        Reduce same; // null: means by area
    } cases[] = {
        {499, 1000, 1, &XCVOffscreen::ChangeResolutionHalf},     {251, 1000, 1, &XCVOffscreen::ChangeResolutionQuarter},
        {124, 1000, 0, &XCVOffscreen::ChangeResolutionOctantal}, {998, 500, 0, &XCVOffscreen::ChangeResolutionDouble},
        {999, 250, 1, &XCVOffscreen::ChangeResolutionFourfold},  {497, 1000, 1, nullptr},
    };
    TestStore store;
    for (const auto& c : cases) {
        TestImage from(store, 32, c.sw, c.sw), to(store, 32, c.w, c.w), same(store, 32, c.w, c.w);
        scribble(from, XCRect(c.sw / 4, c.sw / 4, c.sw / 4 + 9, c.sw / 4 + 9));
        to->ChangeResolution2(0, 0, c.w, c.w, from.get(), 0, 0, c.sw, c.sw, CHANGE_RESOLUTION_MODE(c.mode), 0);
        if (c.same)
            (same.get()->*c.same)(0, 0, c.w, c.w, from.get(), 0, 0, 0);
        else
            same->ChangeResolution(0, 0, c.w, c.w, from.get(), 0, 0, c.sw, c.sw, CHANGE_RESOLUTION_HIGH, 0);
        EXPECT_TRUE(to->IsBlockExist());
        EXPECT_EQ(Picture(same).difference(to), "") << c.w << " from " << c.sw;
    }
}

TEST(VOffscreenResolution, CutsBothRectanglesAndCopiesEqualSizes) {
    TestStore store;
    TestImage from(store, 32, 300, 2), to(store, 32, 300, 2);
    from.setValue(0, 0, 0xFF000001);
    from.setValue(1, 1, 0xFF000002);
    for (int mode : {0, 1, 7}) {
        to->ChangeResolution2(-5, -5, 7, 7, from.get(), -1, -1, 3, 3, CHANGE_RESOLUTION_MODE(mode),
                              0); // 2 x 2 to 2 x 2
        EXPECT_EQ(to.value(0, 0), 0xFF000001u);
        EXPECT_EQ(to.value(1, 1), 0xFF000002u);
    }
    to->ChangeResolution(0, 0, 9, 1, from.get(), 0, 0, 3, 1, CHANGE_RESOLUTION_MODE(7), 0); // no such mode
    EXPECT_EQ(to.value(1, 0), 0x00FFFFFFu);
    to->ChangeResolution(0, 0, 9, 9, nullptr, 0, 0, 3, 3, CHANGE_RESOLUTION_LOW, 0);
    to->ChangeResolution(400, 0, 9, 9, from.get(), 0, 0, 3, 3, CHANGE_RESOLUTION_LOW, 0);
}

TEST(VOffscreenResolution, HostileRectanglesAndOneImageAreHarmless) {
    Pair p(32, 32);
    XCVOffscreen* const image = p.from.get();
    for (int place : {INT_MIN, -1, 0, 340, INT_MAX})
        for (int size : {INT_MIN, -1, 0, 1, 7, INT_MAX}) {
            image->ChangeResolution2(place, 0, size, 50, image, 1, place, 60, size, CHANGE_RESOLUTION_HIGH, 1);
            image->ChangeResolutionLow(0, 0, 4, 4, image, place, place, size, size / 100000, 0);
            image->ChangeResolutionOctantal(place, place, size, size, image, place, 3, 0);
            image->ChangeResolutionFourfold(0, place, size, 9, image, place, place, 0);
            image->StretchCopy(place, 0, size, 5, image, place, 0, size, size);
        }
    image->ChangeResolutionHalfAll(image);
    image->ChangeResolutionFourfoldAll(image);
}

} // namespace
