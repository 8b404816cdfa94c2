#include "caserunner.h"
#include "randomcases.h"

#include "mixing/blockpart.h"
#include "mixing/copyrows.h"
#include "mixing/stamprows.h"

#include <gtest/gtest.h>

/// @file
/// The library's own fast ways of painting leave what the same work span by span leaves.

namespace {

using namespace ovw::test;

/// One case laid out twice, to paint in two ways.
struct Twins {
    explicit Twins(const MixCase& mixCase)
        : fast(s_store(), s_fastPool(), mixCase), plain(s_store(), s_plainPool(), mixCase) {}

    void startDab(const MixDab& dab) {
        fast.startDab(dab);
        plain.startDab(dab);
    }

    /// The first difference as text.
    std::string differ() {
        std::string found = differ(fast.destination(), plain.destination(), "destination");
        if (found.empty() && fast.cache())
            found = differ(*fast.cache(), *plain.cache(), "cache");
        if (found.empty() && fast.colorCache())
            found = differ(*fast.colorCache(), *plain.colorCache(), "colour cache");
        return found;
    }

    static TestStore& s_store() {
        static TestStore s_theStore;
        return s_theStore;
    }
    static ImagePool& s_fastPool() {
        static ImagePool s_pool(s_store());
        return s_pool;
    }
    static ImagePool& s_plainPool() {
        static ImagePool s_pool(s_store());
        return s_pool;
    }
    static std::string differ(const TestImage& image, const TestImage& plain, const char* name) {
        PlainImage expected(plain.depth(), MixCase::cnWidth, MixCase::cnHeight);
        for (int y = 0; y < expected.height; ++y)
            plain.visitRow(0, expected.width, y, 0, [&](std::uint8_t* base, int column, int row, int x) {
                expected.at(x, y) = storedPixel(base, plain->GetBlockRowBytes(), plain.depth(), column, row);
            });
        return difference(image, expected, 0xFFFFFFFF, name);
    }

    LibraryMix fast, plain;
};

constexpr Family s_families[] = {Family::plain, Family::cached, Family::water, Family::blur, Family::clone};

constexpr Family s_copyFamilies[] = {Family::directCopy, Family::grayCopy, Family::waterCopy, Family::colorCopy,
                                     Family::toneCopy};

/// Gives each seed another set of kernels, and the machine's best one back at the end.
class SetRotation {
public:
    ~SetRotation() { ovw::mixing::forceInstructionSet(m_best); }
    void turn(std::uint64_t seed) { ovw::mixing::forceInstructionSet(m_sets[seed % m_sets.size()]); }

private:
    ovw::mixing::InstructionSet m_best = ovw::mixing::instructionSet();
    std::vector<ovw::mixing::InstructionSet> m_sets = machineSets();
};

/// The rows of a dab as one part: its first span's columns.
XCRect part(const MixDab& dab) {
    const MixSpan& first = dab.spans.front();
    return XCRect(first.x1, first.y, first.x2 + 1, dab.spans.back().y + 1);
}

std::vector<float> makeCoverage(Random& random, int n) {
    std::vector<float> coverage;
    while (int(coverage.size()) < n) {
        float value = random.chance(4) ? float(random.chance(2)) : float(random.number(0, 256)) / 256;
        int repeats = random.chance(4) ? random.number(2, 40) : 1;
        coverage.insert(coverage.end(), std::size_t(repeats), value);
    }
    coverage.resize(std::size_t(n));
    return coverage;
}

void paintEach(XCFastPixelMixer& mixer, int x, int y, const std::vector<float>& coverage) {
    for (std::size_t i = 0; i < coverage.size(); ++i) {
        if (!(coverage[i] > 0))
            continue;
        mixer.ScaleAntiAlpha(coverage[i]);
        mixer.DoLineRow(x + int(i), x + int(i), y);
    }
}

/// Where row y of a dab begins in the source.
ovw::mixing::SampleLine lineOf(XCFastPixelMixer& mixer, double u, double v, double du, double dv) {
    const double step = mixer.GetStyleFlag(XCFastPixelMixer::STYLE_ANTIALIAS) ? 16384 : 32768;
    return {int(u * 32768), int(v * 32768), int(du * step), int(dv * step)};
}

} // namespace

TEST(MixerRoads, ABlockPartEqualsItsRows) {
    SetRotation sets;
    for (std::uint64_t seed = 0; seed < 400; ++seed) {
        sets.turn(seed);
        MixCase mixCase(s_families[seed % std::size(s_families)], seed);
        Twins twins(mixCase);
        for (const MixDab& dab : mixCase.dabs) {
            twins.startDab(dab);
            XCRect area = part(dab);
            ovw::mixing::paintBlockPart(twins.fast.mixer(), area);
            twins.plain.mixer().MoveCursorToBlock(area.left, area.top);
            for (int y = area.top; y < area.bottom; ++y)
                twins.plain.mixer().DoLineRow(area.left, area.right - 1, y);
            // What it leaves behind: row 7 is painted from there.
            twins.fast.mixer().DoLineRow(area.left, area.left, 7);
            twins.plain.mixer().DoLineRow(area.left, area.left, 7);
            ASSERT_EQ(twins.differ(), "") << mixCase.describe();
        }
        ASSERT_EQ(twins.fast.average().ConvertSmudgeColor(0), twins.plain.average().ConvertSmudgeColor(0)) << seed;
    }
}

TEST(MixerRoads, ALargeBlockPartEqualsItsRows) {
    for (int depth : {1, 2, 8, 24, 32})
        for (int composition : {0, 1, 2, 3}) {
            TestStore store;
            TestImage fast(store, depth, 300, 300);
            TestImage plain(store, depth, 300, 300);
            for (TestImage* image : {&fast, &plain}) {
                XCVOffscreenAutoLock lock(image->get(), 1);
                XCFastPixelMixer mixer;
                mixer.SetDstOffscreen(image->get());
                mixer.SetColor(0xC0402010);
                mixer.SetDrawCompositioin(composition);
                XCRect area(3, 5, 256, 250);
                if (image == &fast)
                    ovw::mixing::paintBlockPart(mixer, area);
                else {
                    mixer.MoveCursorToBlock(area.left, area.top);
                    for (int y = area.top; y < area.bottom; ++y)
                        mixer.DoLineRow(area.left, area.right - 1, y);
                }
            }
            for (int y = 0; y < 256; ++y) {
                const std::uint8_t* rows[2];
                XCVOffscreenAutoLock fastLock(fast.get(), 0, y, 0);
                XCVOffscreenAutoLock plainLock(plain.get(), 0, y, 0);
                rows[0] = fast->GetCurrentAddress();
                rows[1] = plain->GetCurrentAddress();
                ASSERT_TRUE(rows[0] && rows[1]);
                ASSERT_EQ(std::memcmp(rows[0], rows[1], std::size_t(fast->GetBlockRowBytes())), 0)
                    << depth << " bits, composition " << composition << ", row " << y;
            }
        }
}

TEST(MixerRoads, ALongSpanOverOpaqueAndEmptyPixelsEqualsItsPixels) {
    SetRotation sets;
    for (int seed = 0; seed < 36; ++seed) {
        sets.turn(std::uint64_t(seed));
        TestStore store;
        TestImage image(store, 32, 256, 2);
        XCVOffscreenAutoLock lock(image.get(), 1);
        image->MoveCursor(0, 0);
        std::uint8_t* row = image->GetBaseAddress();
        Random random(std::uint64_t(seed + 1));
        for (int x = 0; x < 256; ++x) { // runs of 70 pixels: opaque, empty, anything
            const int alpha = x / 70 % 3 == 0 ? 255 : x / 70 % 3 == 1 ? 0 : random.number(0, 255);
            for (int channel = 0; channel < 4; ++channel)
                row[4 * x + channel] = std::uint8_t(channel == 3 ? alpha : random.number(0, 255));
        }
        std::memcpy(row + 1024, row, 1024);
        XCFastPixelMixer mixer;
        mixer.SetDstOffscreen(image.get());
        mixer.SetDrawCompositioin(XCFastPixelMixer::Normal);
        mixer.SetColor(0xFFC81E50);
        mixer.SetMixAlpha(float(random.number(1, 255)) / 255);
        mixer.SetNotChangeAlpha(seed % 2);
        mixer.MoveCursorToBlock(0, 0);
        mixer.DoLineRow(0, 255 - seed % 7, 0);
        for (int x = 0; x <= 255 - seed % 7; ++x)
            mixer.DoLineRow(x, x, 1);
        ASSERT_EQ(std::memcmp(row, row + 1024, 1024), 0) << seed;
    }
}

TEST(MixerRoads, AnEmptyBlockPartPaintsNothing) {
    TestStore store;
    TestImage image(store, 8, 100, 100);
    XCVOffscreenAutoLock lock(image.get(), 1);
    XCFastPixelMixer mixer;
    mixer.SetDstOffscreen(image.get());
    mixer.SetColor(0xFF000000);
    for (XCRect empty : {XCRect(5, 5, 5, 9), XCRect(5, 5, 9, 5), XCRect(9, 9, 5, 5), XCRect(0, 0, 0, 0)})
        ovw::mixing::paintBlockPart(mixer, empty);
    for (int y = 0; y < 12; ++y)
        for (int x = 0; x < 12; ++x)
            ASSERT_EQ(image.value(x, y), 0u);
}

/// Coverages in 255ths, and as the mixer takes them.
std::vector<std::uint8_t> makeBytes(Random& random, int n) {
    std::vector<std::uint8_t> bytes;
    for (int i = 0; i < n; ++i)
        bytes.push_back(std::uint8_t(random.chance(4) ? 0 : random.chance(4) ? 255 : random.number(1, 254)));
    return bytes;
}

std::vector<float> coveragesOf(const std::vector<std::uint8_t>& bytes) {
    std::vector<float> coverages;
    for (std::uint8_t byte : bytes)
        coverages.push_back(byte == 255 ? 1.0f : float(byte) * 0.003921568859368563f);
    return coverages;
}

TEST(MixerRoads, TheRunsOfAPolygonEqualTheirPixels) {
    SetRotation sets;
    for (std::uint64_t seed = 0; seed < 500; ++seed) {
        sets.turn(seed);
        MixCase mixCase(s_families[seed % std::size(s_families)], seed);
        Twins twins(mixCase);
        Random random(seed);
        for (const MixDab& dab : mixCase.dabs) {
            twins.startDab(dab);
            twins.fast.mixer().MoveCursorToBlock(0, 0);
            twins.plain.mixer().MoveCursorToBlock(0, 0);
            {
                ovw::mixing::StampRows rows(twins.fast.mixer(), XCRect(0, 0, 256, 7));
                for (int y = 0; y < 7; ++y)
                    for (int from = random.number(0, 40), to; from < 256; from = to + random.number(0, 60)) {
                        to = std::min(from + random.number(1, random.chance(3) ? 200 : 9), 256);
                        const bool isFull = random.chance(3);
                        const std::vector<std::uint8_t> bytes = makeBytes(random, to - from);
                        if (isFull)
                            rows.paintFull(from, to, y);
                        else
                            rows.paintCoverages(from, y, bytes);
                        paintEach(twins.plain.mixer(), from, y,
                                  isFull ? std::vector<float>(bytes.size(), 1.0f) : coveragesOf(bytes));
                    }
            }
            // What it leaves behind: row 7 is painted from there.
            twins.fast.mixer().DoLineRow(0, 255, 7);
            twins.plain.mixer().DoLineRow(0, 255, 7);
            ASSERT_EQ(twins.differ(), "") << mixCase.describe();
        }
        ASSERT_EQ(twins.fast.average().ConvertSmudgeColor(0), twins.plain.average().ConvertSmudgeColor(0)) << seed;
    }
}

TEST(MixerRoads, TheRowsOfAStampEqualTheirPixels) {
    SetRotation sets;
    for (std::uint64_t seed = 0; seed < 500; ++seed) {
        sets.turn(seed);
        MixCase mixCase(s_families[seed % std::size(s_families)], seed);
        Twins twins(mixCase);
        Random random(seed);
        for (const MixDab& dab : mixCase.dabs) {
            twins.startDab(dab);
            const XCRect reach(random.number(0, 100), 0, random.number(101, 256), 7);
            twins.fast.mixer().MoveCursorToBlock(reach.left, reach.top);
            twins.plain.mixer().MoveCursorToBlock(reach.left, reach.top);
            {
                ovw::mixing::StampRows rows(twins.fast.mixer(), reach);
                for (int y = reach.top; y < reach.bottom; ++y) {
                    const int width = random.chance(2) ? 20 : 256; // as small dabs have, and large ones
                    const int start = random.number(reach.left, reach.right - 1);
                    const int end = random.number(start, std::min(start + width, reach.right));
                    const int innerStart = random.number(start, end);
                    const int innerEnd = random.number(innerStart, end);
                    const std::vector<float> coverage = makeCoverage(random, 256);
                    rows.paint(y, {start, innerStart, innerEnd, end}, [&](int x) { return coverage[std::size_t(x)]; });
                    const auto at = coverage.begin();
                    paintEach(twins.plain.mixer(), start, y, {at + start, at + innerStart});
                    paintEach(twins.plain.mixer(), innerEnd, y, {at + innerEnd, at + end});
                    paintEach(twins.plain.mixer(), innerStart, y, std::vector<float>(innerEnd - innerStart, 1.0f));
                }
            }
            // What it leaves behind: row 7 is painted from there.
            twins.fast.mixer().DoLineRow(0, 255, 7);
            twins.plain.mixer().DoLineRow(0, 255, 7);
            ASSERT_EQ(twins.differ(), "") << mixCase.describe();
        }
        ASSERT_EQ(twins.fast.average().ConvertSmudgeColor(0), twins.plain.average().ConvertSmudgeColor(0)) << seed;
    }
}

TEST(MixerRoads, TheRowsOfAnImageStampEqualTheirSpans) {
    SetRotation sets;
    for (std::uint64_t seed = 0; seed < 500; ++seed) {
        sets.turn(seed);
        MixCase mixCase(s_copyFamilies[seed % std::size(s_copyFamilies)], seed);
        Twins twins(mixCase);
        Random random(seed);
        for (const MixDab& dab : mixCase.dabs) {
            twins.startDab(dab);
            const XCRect reach(random.number(0, 100), 0, random.number(101, 256), 7);
            XCFastPixelMixer& fast = twins.fast.mixer();
            fast.MoveCursorToBlock(reach.left, reach.top);
            twins.plain.mixer().MoveCursorToBlock(reach.left, reach.top);
            ovw::mixing::CopyRows rows(fast, twins.fast.source());
            for (int y = reach.top; y < reach.bottom; ++y) {
                const int width = random.chance(2) ? 20 : 256;
                const int start = random.number(reach.left, reach.right - 1);
                const int end = random.number(start + 1, std::min(start + width, int(reach.right)));
                MixDab row = dab;
                row.u = random.real(-300, 60);
                twins.plain.startDab(row);
                rows.paint(start, end, y, lineOf(fast, row.u, row.v, row.du, row.dv),
                           lineOf(fast, row.uB, row.vB, row.duB, row.dvB));
                twins.plain.mixer().DoLineRowCopy(start, end, y, &twins.plain.source());
            }
        }
        ASSERT_EQ(twins.differ(), "") << mixCase.describe();
        ASSERT_EQ(twins.fast.average().ConvertSmudgeColor(0), twins.plain.average().ConvertSmudgeColor(0)) << seed;
    }
}
