#include "ovwcmn/xcvoffpixelmixer.h"

#include "ovwcmn/xcpixelmixer.h"
#include "support/scopes.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace {

using namespace ovw::test;

using Handed = std::vector<std::pair<std::uint32_t, int>>; // value or colour, weight

/// Notes what it is handed and leaves the pixel alone.
struct Recorder : XCPixelMixer {
    void Do8Bit(std::uint8_t*, std::uint8_t value, std::uint8_t weight) override { handed.emplace_back(value, weight); }
    void Do24Bit(std::uint32_t*, std::uint32_t colour, std::uint8_t weight) override {
        handed.emplace_back(colour, weight);
    }
    void Do32Bit(std::uint32_t*, std::uint32_t colour, std::uint8_t weight) override {
        handed.emplace_back(colour, weight);
    }
    Handed take() { return std::exchange(handed, {}); }
    Handed handed;
};

constexpr tagPOINT cnNoOrigin{0, 0};

class OffPixelMixer : public testing::Test {
protected:
    OffPixelMixer() {
        m_mixer.SetDstOffscreen(m_image.get());
        m_mixer.SetNode(&m_recorder);
        m_mixer.SetColor(XCComplexColor(0xC8030201u));
    }

    XCVOffPixelMask maskOf(XCVOffscreen* image, int kind, int offsetX = 0, int offsetY = 0) {
        XCVOffPixelMask mask;
        mask.SetMaskInfo(0, {kind, image, 0, offsetX, offsetY});
        return mask;
    }

    TestStore m_store;
    TestImage m_image{m_store, 32, 300, 20};
    Recorder m_recorder;
    XCVOffPixelMixer m_mixer;
};

} // namespace

TEST_F(OffPixelMixer, MixesByTheRulesOfEachDepth) {
    XCPixelMixer store;
    XCPixelMixerBlend blend;
    XCPixelMixerWeightCopy copy;
    const struct {
        int depth;
        std::uint32_t before;
        XCPixelMixer& chain;
        std::uint32_t colour;
        int weight;
        std::uint32_t after;
    } cases[] = {
        {1, 0, store, 0xC8000000, 0, 1},
        {1, 1, store, 0x64000000, 0, 0},   // 100 is no ink
        {2, 3, blend, 0xFFFFFFFF, 128, 2}, // grey 128
        {2, 3, blend, 0xFFFFFFFF, 127, 3}, // grey 127
        {2, 0, blend, 0xFF000000, 255, 3},
        {8, 100, copy, 0xC8000000, 128, 150},
        {16, 0x0000, store, 0x00404040, 255, 0x40FF},
        {24, 0x000000, blend, 0xFFFFFFFF, 128, 0x808080},
        {24, 0x112233, store, 0x80445566, 0, 0x445566},
        {32, 0xFF000000, blend, 0xFFFFFFFF, 128, 0xFF808080},
        {32, 0x00000000, copy, 0xFF643264, 128, 0x80321932},
    };
    for (const auto& c : cases) {
        TestImage image(m_store, c.depth, 4, 4);
        image.setValue(2, 1, c.before);
        XCVOffscreenAutoLock lock(image.get(), 1);
        XCVOffPixelMixer mixer;
        mixer.SetDstOffscreen(image.get());
        EXPECT_EQ(mixer.GetMixerBitCount(), c.depth);
        mixer.SetNode(&c.chain);
        image->MoveCursor(2, 1);
        mixer.Do(XCComplexColor(c.colour), c.weight);
        EXPECT_EQ(image->GetCursorPosX(), 2);
        EXPECT_EQ(image.value(2, 1), c.after) << "case " << &c - cases;
    }
}

TEST_F(OffPixelMixer, HandsOnColoursAndWeights) {
    TestImage ink(m_store, 8, 4, 4);
    XCVOffscreenAutoLock lock(ink.get(), 1);
    ink->MoveCursor(1, 1);
    m_mixer.SetDstOffscreen(ink.get());
    const struct {
        std::uint32_t colour;
        int brightness;
        std::uint32_t value;
    } cases[] = {
        {0x80112233, 0, 0x80}, {0xFF0000FF, 1, 1}, {0xFFFFFFFF, 1, 1},
        {0xFF000000, 1, 255},  {0x00000000, 1, 1}, {0x7F004000, 1, 96}, // 128 * 192 >> 8
    };
    for (const auto& c : cases) {
        m_mixer.Use8BitColorBrightness(c.brightness);
        m_mixer.Do(XCComplexColor(c.colour), 7);
        EXPECT_EQ(m_recorder.take(), (Handed{{c.value, 7}})) << std::hex << c.colour;
    }
    m_mixer.SetDstOffscreen(32, m_image.get());
    XCVOffscreenAutoLock imageLock(m_image.get(), 1);
    m_image->MoveCursor(0, 0);
    m_mixer.SetAlpha(99);
    EXPECT_EQ(m_mixer.GetAlpha64(), 99 * 257);
    m_mixer.Do();
    m_mixer.Do(5);
    m_mixer.Do(XCComplexColor(std::uint64_t{0xFF00112233445566}));
    m_mixer.Do(256 + 3);
    EXPECT_EQ(m_recorder.take(), (Handed{{0xC8030201, 99}, {0xC8030201, 5}, {0xFF113355, 99}, {0xC8030201, 3}}));
    m_mixer.SetDstOffscreen(7, m_image.get());
    m_mixer.Do();
    EXPECT_TRUE(m_recorder.handed.empty());
}

TEST_F(OffPixelMixer, TwoColoursAreMixedWhateverThePixelWas) {
    XCPixelMixerWeightCopy copy;
    const struct {
        int depth;
        std::uint32_t after;
    } cases[] = {{8, 150}, {32, 0x96969696}, {24, 0xC8C8C8}};
    for (const auto& c : cases) {
        TestImage image(m_store, c.depth, 4, 4);
        image.setValue(0, 0, 77);
        XCVOffscreenAutoLock lock(image.get(), 1);
        XCVOffPixelMixer mixer;
        mixer.SetDstOffscreen(image.get());
        image->MoveCursor(0, 0);
        mixer.Do(XCComplexColor(0x64646464u), XCComplexColor(0xC8C8C8C8u), 128);
        EXPECT_EQ(image.value(0, 0), 77u) << "no chain";
        mixer.SetNode(&copy);
        mixer.Do(XCComplexColor(0x64646464u), XCComplexColor(0xC8C8C8C8u), 128);
        EXPECT_EQ(image.value(0, 0), c.after) << c.depth;
    }
}

TEST(OffPixelMixerChain, IsLinkedInOrderAndNeverToARing) {
    XCPixelMixer a, b, c;
    XCVOffPixelMixer mixer;
    EXPECT_EQ(mixer.PushNode(&a), nullptr);
    EXPECT_EQ(mixer.PushNode(&b), &a);
    EXPECT_EQ(mixer.GetMixer(), &a);
    EXPECT_EQ(a.GetNext(), &b);
    XCVOffPixelMixer other;
    other.SetNode(&c);
    other.FrontNode(&a); // a, b in front of c
    EXPECT_EQ(other.GetMixer(), &a);
    EXPECT_EQ(b.GetNext(), &c);
    EXPECT_EQ(c.GetNext(), nullptr);
    other.PushNode(&b);
    other.FrontNode(&a);
    other.PushNode(nullptr);
    EXPECT_EQ(c.GetNext(), nullptr);
    EXPECT_EQ(other.SetNode(&b), &a);
    other.FrontNode(nullptr);
    EXPECT_EQ(other.GetMixer(), nullptr);
}

TEST_F(OffPixelMixer, DitherDrawsByTheMatrix) {
    XCPixelMixerDither dither;
    dither.SetMapInfo(m_image.get());
    m_mixer.SetNode(&dither);
    m_mixer.PushNode(&m_recorder);
    XCVOffscreenAutoLock lock(m_image.get(), 1);
    for (int weight : {0, 1, 2, 100, 254, 255}) {
        const int level = (weight + 1) * 255 >> 8;
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 16; ++x) {
                m_image->MoveCursor(x, y);
                m_mixer.Do(XCComplexColor(0xFF030201u), weight);
                const bool isDrawn =
                    level == 255 || (level > 0 && XCVOffscreen::GetDitherTable256()[y * 16 + x] <= level);
                ASSERT_EQ(m_recorder.take(), isDrawn ? (Handed{{0xFF030201, 255}}) : Handed{}) << weight;
            }
    }
}

TEST_F(OffPixelMixer, RowsScaleTheWeight) {
    TestImage mask(m_store, 8, 300, 20);
    mask.setValue(10, 3, 255);
    mask.setValue(11, 3, 128);
    mask.setValue(12, 3, 1);
    XCVOffscreenAutoLock lock(m_image.get(), 1);
    XCVOffscreenAutoLock maskLock(mask.get(), 0);
    XCVOffPixelMask normal = maskOf(mask.get(), 0);
    XCVOffPixelMask extension = maskOf(mask.get(), 1);
    XCVOffPixelMask none;
    std::uint8_t coverage[] = {0, 255, 128, 255, 9};
    const std::uint32_t colour = 0xC8030201;
    m_mixer.SetAlpha(200);
    const auto line = [&](XCVOffPixelMask* m) { m_mixer.DoLineRow(9, 12, 3, m, nullptr, cnNoOrigin); };
    const auto buffer = [&](XCVOffPixelMask* m) {
        m_mixer.DoLineRowBuffer(coverage, 9, 12, 3, m, nullptr, cnNoOrigin);
    };
    line(&none);
    EXPECT_EQ(m_recorder.take(), Handed(4, {colour, 200}));
    EXPECT_EQ(m_image->GetCursorPosX(), 13);
    line(&normal); // 201 * 255 >> 8, 201 * 128 >> 8, 201 >> 8
    EXPECT_EQ(m_recorder.take(), (Handed{{colour, 200}, {colour, 100}, {colour, 0}}));
    line(&extension); // ink from 128 on
    EXPECT_EQ(m_recorder.take(), (Handed{{colour, 200}, {colour, 200}}));
    buffer(nullptr);
    EXPECT_EQ(m_recorder.take(), (Handed{{colour, 200}, {colour, 100}, {colour, 200}}));
    buffer(&normal); // 101 * 128 >> 8
    EXPECT_EQ(m_recorder.take(), (Handed{{colour, 200}, {colour, 50}, {colour, 0}}));
    buffer(&extension);
    EXPECT_EQ(m_recorder.take(), (Handed{{colour, 200}, {colour, 100}}));
    XCComplexColor other(0xFF112233u);
    m_mixer.DoLineRow(5, 5, 3, nullptr, &other, cnNoOrigin);
    m_mixer.DoLineRow(5, 4, 3, nullptr, &other, cnNoOrigin);
    EXPECT_EQ(m_recorder.take(), (Handed{{0xFF112233, 200}}));
}

TEST_F(OffPixelMixer, RowsCloneFromTheSource) {
    TestImage source(m_store, 32, 300, 300); // blocks beyond (255, 255) are missing
    source.setValue(100, 50, 0xFF112233);
    source.setValue(101, 50, 0x80445566);
    TestImage mask(m_store, 8, 300, 20);
    mask.setValue(21, 4, 128);
    XCVOffscreenAutoLock lock(m_image.get(), 1);
    XCVOffscreenAutoLock sourceLock(source.get(), 0);
    XCVOffscreenAutoLock maskLock(mask.get(), 0);
    XCVOffPixelMask normal = maskOf(mask.get(), 0);
    m_mixer.SetCloneOffscreen(source.get(), {110, 60});
    m_mixer.SetCloneLeftTopOffset({10, 10});
    m_mixer.DoLineRow(20, 22, 4, nullptr, nullptr, {20, 4});
    EXPECT_EQ(m_recorder.take(), (Handed{{0xFF112233, 255}, {0x80445566, 255}, {source.value(102, 50), 255}}));
    m_mixer.DoLineRow(20, 22, 4, &normal, nullptr, {20, 4});
    EXPECT_EQ(m_recorder.take(), (Handed{{0x80445566, 128}}));
    m_mixer.SetCloneOffscreen(source.get(), {256 + 20, 256 + 20});
    m_mixer.DoLineRow(20, 20, 4, nullptr, nullptr, {20, 4});
    m_mixer.SetCloneOffscreen(source.get(), {INT32_MIN, INT32_MAX});
    m_mixer.DoLineRow(20, 20, 4, nullptr, nullptr, {INT32_MAX, INT32_MIN});
    EXPECT_EQ(m_recorder.take(), (Handed{{0x00FFFFFF, 255}, {0x00FFFFFF, 255}}));
    // The source's cursor by hand, counted from the point less the offset.
    m_image->MoveCursor(5, 5);
    m_mixer.SetCloneOffscreen(source.get(), {90, 55});
    m_mixer.RelativeCloneCursorX(20);
    m_mixer.RelativeCloneCursorY(4);
    m_mixer.NextCloneCursorX();
    m_mixer.NextCloneCursorY();
    m_mixer.DoClone(7);
    EXPECT_EQ(m_recorder.take(), (Handed{{0x80445566, 7}}));
    m_mixer.SetCloneOffscreen(nullptr, {0, 0});
    m_mixer.RelativeCloneCursorX(1), m_mixer.RelativeCloneCursorY(1), m_mixer.NextCloneCursorX();
    m_mixer.DoClone(3);
    EXPECT_TRUE(m_recorder.handed.empty());
}

TEST_F(OffPixelMixer, CopiesGoByTheKindOfTheSource) {
    XCVOffscreenAutoLock lock(m_image.get(), 1);
    TestImage mask(m_store, 8, 300, 20);
    mask.fillRow(1, 4, 2, 128); // leaves x = 0 out
    XCVOffscreenAutoLock maskLock(mask.get(), 0);
    XCVOffPixelMask normal = maskOf(mask.get(), 0);
    m_mixer.SetSubColor(XCComplexColor(0x64777777u));
    m_mixer.SetAlpha(77);
    const struct {
        int srcDepth;
        std::uint32_t pixels[4];
        int dstDepth;
        Handed plain, masked;
    } cases[] = {
        // (alpha + 1) * 200 >> 8, then (that + 1) * 128 >> 8
        {32,
         {0xFF112233, 0x80445566, 0x00FFFFFF, 0xFF000001},
         32,
         {{0xC8112233, 77}, {0x64445566, 77}, {0xC8000001, 77}},
         {{0x32445566, 77}, {0x64000001, 77}}},
        {32,
         {0xFF112233, 0x80445566, 0x00FFFFFF, 0xFF000001},
         8,
         {{200, 77}, {100, 77}, {200, 77}},
         {{50, 77}, {100, 77}}},
        {2,
         {3, 2, 0, 3},
         32,
         {{0xC8030201, 77}, {0x64777777, 77}, {0xC8030201, 77}},
         {{0x32777777, 77}, {0x64030201, 77}}},
        {2, {3, 2, 0, 3}, 8, {{200, 77}, {200, 77}}, {{100, 77}}},
        // 201 * ink >> 8
        {8,
         {255, 128, 0, 255},
         32,
         {{0xC8030201, 77}, {0x64030201, 77}, {0xC8030201, 77}},
         {{0x32030201, 77}, {0x64030201, 77}}},
        {1, {1, 1, 0, 1}, 8, {{200, 77}, {200, 77}, {200, 77}}, {{100, 77}, {100, 77}}},
    };
    for (const auto& c : cases) {
        TestImage source(m_store, c.srcDepth, 10, 10);
        TestImage image(m_store, c.dstDepth, 10, 10);
        for (int i = 0; i < 4; ++i)
            source.setValue(3 + i, 5, c.pixels[i]);
        XCVOffscreenAutoLock sourceLock(source.get(), 0);
        XCVOffscreenAutoLock imageLock(image.get(), 1);
        m_mixer.SetDstOffscreen(image.get());
        image->MoveCursor(9, 2);
        m_mixer.DoLineRowCopy(0, 4, source.get(), 3.5, 5.9, 1.0, 0.0, nullptr);
        EXPECT_EQ(m_recorder.take(), c.plain) << "case " << &c - cases;
        EXPECT_EQ(image->GetCursorPosX(), 4);
        m_mixer.DoLineRowCopy(0, 4, source.get(), 3.5, 5.9, 1.0, 0.0, &normal);
        EXPECT_EQ(m_recorder.take(), c.masked) << "case " << &c - cases;
        m_mixer.DoLineRowCopy(2, 2, source.get(), 3, 5, 1, 0, nullptr);
        EXPECT_TRUE(m_recorder.handed.empty());
    }
}

TEST_F(OffPixelMixer, ExtremeArgumentsPaintNothingOutside) {
    constexpr int cnLeast = std::numeric_limits<int>::min();
    constexpr int cnMost = std::numeric_limits<int>::max();
    const double nan = std::nan("");
    const double infinity = std::numeric_limits<double>::infinity();
    TestImage source(m_store, 32, 10, 10);
    source.setValue(0, 0, 0xFF112233);
    XCVOffscreenAutoLock lock(m_image.get(), 1);
    XCVOffscreenAutoLock sourceLock(source.get(), 0);
    m_mixer.DoLineRow(cnLeast, cnMost, 3, nullptr, nullptr, cnNoOrigin);
    EXPECT_EQ(m_recorder.take().size(), 300u);
    m_mixer.DoLineRow(cnLeast, cnMost, 20, nullptr, nullptr, {cnLeast, cnMost});
    m_mixer.DoLineRow(-9, -1, 3, nullptr, nullptr, cnNoOrigin);
    m_mixer.DoLineRow(300, cnMost, -1, nullptr, nullptr, cnNoOrigin);
    m_mixer.DoLineRowBuffer(nullptr, 0, 5, 3, nullptr, nullptr, cnNoOrigin);
    EXPECT_TRUE(m_recorder.handed.empty());
    m_image->MoveCursor(0, 0);
    for (double u : {infinity, -infinity, 1e300, -0.00002, 10.0})
        m_mixer.DoLineRowCopy(0, 1, source.get(), u, 0, 1, 0, nullptr);
    m_mixer.DoLineRowCopy(cnLeast, cnMost, source.get(), 0, 0, infinity, -1e300, nullptr);
    m_mixer.DoLineRowCopy(0, 5, nullptr, 0, 0, 1, 0, nullptr);
    EXPECT_TRUE(m_recorder.handed.empty());
    m_mixer.DoLineRowCopy(0, 1, source.get(), nan, nan, nan, nan, nullptr);
    EXPECT_EQ(m_recorder.take().size(), 1u);
    XCVOffPixelMixer idle;
    idle.Do();
    idle.DoClone();
    idle.RelativeCloneCursor(1, 1);
    idle.NextCloneCursorY();
    idle.DoLineRow(0, 5, 0, nullptr, nullptr, cnNoOrigin);
    idle.SetAlpha(cnMost);
    EXPECT_EQ(idle.GetMixerBitCount(), 0);
}

TEST_F(OffPixelMixer, MissingBlocksArePassedOver) {
    XCVOffscreenAutoLock lock(m_image.get(), 0);
    m_mixer.DoLineRow(250, 260, 3, nullptr, nullptr, cnNoOrigin);
    EXPECT_TRUE(m_recorder.handed.empty());
    EXPECT_EQ(m_image->GetCursorPosX(), 261);
    EXPECT_FALSE(m_image->IsBlockExist());
}

TEST_F(OffPixelMixer, MasksAreReadInTheirOwnResolution) {
    TestImage image(m_store, 32, 40, 40);
    XCVOffscreen8Bit selection;
    selection.Create(m_store.get(), 20, 20, 0.5); // the image has 1.0
    XCVOffPixelMask mask;
    EXPECT_FALSE(mask.IsNormalMask() || mask.IsExtensionMask());
    EXPECT_EQ(mask.GetMaskInfo(0).kind, 80);
    EXPECT_EQ(mask.IsMaskFreeEx(image.get(), 1, 1), 1);
    EXPECT_EQ(mask.GetMaskFreeValue(image.get(), 1, 1), 0);
    mask.SetMaskInfo(0, {0, &selection, 0, 4, -2});
    EXPECT_TRUE(mask.IsNormalMask());
    XCVOffscreenAutoLock lock(&selection, 1);
    selection.MoveCursor(3, 5);
    selection.Set8BitColor(200);
    const struct {
        int x, y, value;
    } cases[] = {{10, 8, 200}, {11, 9, 200}, {12, 8, 0}, {9, 8, 0}, {10, 10, 0}, {10, 7, 0}, {-100, 8, 0}};
    for (const auto& c : cases) {
        EXPECT_EQ(mask.GetMaskFreeValue(image.get(), c.x, c.y), c.value) << c.x << ' ' << c.y;
        EXPECT_EQ(mask.IsMaskFreeEx(image.get(), c.x, c.y), c.value != 0);
        mask.MoveCursorY(image.get(), c.y);
        EXPECT_EQ(mask.GetMaskFreeValueX(image.get(), c.x), c.value);
        EXPECT_EQ(mask.IsMaskFreeXEx(image.get(), c.x), c.value != 0);
    }
    mask.SetMaskInfo(0, {1, &selection, 0, INT32_MIN, INT32_MAX});
    EXPECT_TRUE(mask.IsExtensionMask());
    EXPECT_EQ(mask.GetMaskFreeValue(image.get(), INT32_MAX, INT32_MIN), 0);
    for (int index : {-1, 4})
        EXPECT_EQ(errorOf([&] { mask.GetMaskInfo(index); }), 0x20010008) << index;
}

TEST(OffPixelMask, IsMadeAtAnotherResolution) {
    xcGetVirtualMemory()->Create(1 << 22, nullptr, 1);
    {
        TestStore store;
        XCVOffscreen8Bit selection;
        selection.Create(store.get(), 40, 21, 100.0);
        selection.RectFill(XCRect(10, 10, 20, 20), 0, 0xFF000000, 0);
        const std::unique_ptr<XCVOffscreen> mask(XCVOffPixelMask::CreateMask(&selection, 50.0));
        EXPECT_EQ(mask->GetDepth(), 8);
        EXPECT_EQ(mask->GetRect(), XCRect(0, 0, 20, 10)); // truncated
        EXPECT_EQ(mask->GetResolution(), 50.0);
        tagRECT ink;
        EXPECT_EQ(mask->GetExtentRect(ink, nullptr, 0), 1);
        EXPECT_EQ(XCRect(ink), XCRect(5, 5, 10, 10));
        EXPECT_EQ(XCVOffPixelMask::CreateMask(nullptr, 50.0), nullptr);
    }
    xcGetVirtualMemory()->Destroy();
}

TEST(OffPixelMask, ComparesColoursOrAlphas) {
    const struct {
        int mode;
        std::uint32_t a, b;
        int expected;
    } cases[] = {
        {1, 0x80112233, 0x80112233, 0},
        {1, 0x80112233, 0x80112234, 1},
        {2, 0x80112233, 0x80112233, 1},
        {2, 0x80112233, 0x00112233, 0},
        {3, 0x80112233, 0x00112233, 1},
        {3, 0x80112233, 0x80FFFFFF, 0},
        {4, 0x80112233, 0x00112233, 0},
        {4, 0x80112233, 0x80FFFFFF, 1},
        {0, 1, 1, 0},
        {5, 1, 1, 0},
        {-1, 1, 1, 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(XCVOffPixelMask::IsMaskCompare(c.mode, c.a, c.b), c.expected) << "case " << &c - cases;
}

TEST(OffPixelMask, MasksOfAnotherResolutionAverageWhatTheyCover) {
    xcCreateVirtualMemory(nullptr);
    TestStore store;
    TestImage selection(store, 8, 10, 9);
    selection->SetResolution(90);
    for (int y = 0; y < 9; ++y)
        for (int x = 0; x < 10; ++x)
            selection.setValue(x, y, std::uint32_t(10 * x + y));
    {
        const std::unique_ptr<XCVOffscreen> mask(XCVOffPixelMask::CreateMask(selection.get(), 60));
        EXPECT_EQ(mask->GetRect(), XCRect(0, 0, 6, 6)); // 6.67 pixels wide
        EXPECT_EQ(mask->GetDepth(), 8);
        EXPECT_EQ(mask->GetResolution(), 60);
        const struct {
            int x, y, value;
        } cases[] = {{0, 0, 0}, {1, 1, 16}, {2, 0, 35}, {3, 3, 54}, {5, 5, 92}}; // columns 0, 1-2, 3-4, 5, 8-9
        XCVOffscreenAutoLock lock(mask.get(), 0, 0, 0);
        for (const auto& c : cases) {
            mask->MoveCursor(c.x, c.y);
            EXPECT_EQ(mask->Get8BitColor(), c.value) << c.x << ", " << c.y;
        }
    }
    xcDestroyVirtualMemory();
    EXPECT_EQ(XCVOffPixelMask::CreateMask(nullptr, 60), nullptr);
}
