// What happens when the system has no memory left for the operations on classic images.

#include "ovwcmn/xcfont.h"
#include "ovwcmn/xcoffscreen.h"
#include "support/failingmemory.h"

#include <memory>

namespace {

using namespace ovw::test;

/// Two by two opaque pixels for every line.
int drawDots(const char*, const XCFont&, void (*take)(void*, const VXTEXTBITMAP&), void* context) {
    static const std::uint8_t s_coverage[4] = {255, 255, 255, 255};
    take(context, {2, 2, 2, s_coverage});
    return 1;
}

TEST(XCOffscreenNoMemory, IsErrorEight) {
    XCOffscreen image, other;
    XCFont font;
    std::unique_ptr<XCOffscreen> made;
    const auto prepare = [&] {
        made.reset();
        for (XCOffscreen* const each : {&image, &other}) {
            each->Create(40, 30, 24, 0xFFFFFF, 1);
            each->Lock();
        }
    };
    const tagVXRGBCOLOR16 white{0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF};
    const struct {
        const char* name;
        std::function<void()> run;
    } operations[] = {
        {"copy within", [&] { image.Copy(1, 1, 20, 20, &image, 0, 0); }},
        {"copy by mask", [&] { image.CopyMask(0, 0, 40, 30, &other, 0, 0, &other, 0, 0); }},
        {"copy by colour", [&] { image.CopyMaskColor(0, 0, 40, 30, &other, 0, 0, 0); }},
        {"extraction", [&] { made.reset(image.ExtractionColor(&white, 1)); }},
        {"mirror", [&] { made.reset(image.CreateFlipImage(0)); }},
        {"resolution", [&] { image.ChangeResolution(0, 0, 13, 11, &other, 0, 0, 40, 30, 2); }},
        {"nearest", [&] { image.ChangeResolutionMostLow(0, 0, 13, 11, &other, 0, 0, 40, 30); }},
        {"fill",
         [&] {
             tagRECT changed;
             image.SetForeColor(0x102030);
             image.SeedScanFill(tagPOINT{3, 3}, &changed);
         }},
        {"polygon",
         [&] {
             tagPOINT corners[] = {{1, 1}, {30, 4}, {9, 25}};
             image.FillPolygon(corners, 3);
         }},
        {"smoothing", [&] { image.DoSmoothing(nullptr, nullptr, nullptr, nullptr, nullptr); }},
        {"text",
         [&] {
             image.DrawString("a\nb", tagRECT{0, 0, 40, 30}, font, 0);
         }},
    };
    xcSetTextProc(drawDots);
    for (const auto& operation : operations)
        failEachAllocation(operation.name, prepare, operation.run);
    xcSetTextProc(nullptr);
}

} // namespace
