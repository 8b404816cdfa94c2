// Paints with everything that a brush can do beyond a round pen: the lines that the guide (docs/guide) shows.
#include <ovwcmn/ovwcmn.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

/// A stroke across the image, and how much of the image it changed.
XCRect paintStroke(XCPatternDrawMethod& method, const XCPatternDrawParam& brush) {
    // [stroke]
    XCPatternDraw engine;
    engine.SetOffscreen({}, &method); // one logical unit a pixel
    method.BeginMethod();             // locks the images
    engine.BeginDraw(&brush);         // copies the brush, draws fresh random numbers
    XCLinerStroke stroke;             // or XCBezierStroke
    stroke.FirstStore({40, 100, 0.2f});
    for (int i = 1; i <= 100; ++i) // as samples arrive
        stroke.Store({40.0 + 4 * i, 100 + 40 * std::sin(i / 12.0), 0.5f + 0.5f * float(std::sin(i / 9.0))});
    engine.DrawStroke(nullptr, &stroke, 1);
    XCRect changed;
    engine.EndDraw(&changed);
    method.EndMethod();
    // [/stroke]
    return changed;
}

/// Paints onto the image directly, without a cache.
XCRect paintOnto(XCVOffscreen& canvas, XCPatternDrawParam& brush) {
    XCPatternDrawMethod method;
    method.SetOffscreen(&canvas, 0, nullptr, &brush, XCFastPixelMixer::Normal, 0, 1, 0, 0);
    return paintStroke(method, brush);
}

std::unique_ptr<XCVOffscreen> makeImage(int depth, int width, int height) {
    std::unique_ptr<XCVOffscreen> image(XCVOffscreen::CreateOffscreen(depth));
    image->Create(xcGetVirtualMemory(), width, height, 96.0);
    return image;
}

XCRect paintWithPictures(XCVOffscreen& canvas) {
    // [tips]
    const auto picture = makeImage(8, 32, 32); // densities: 255 covers in full
    {
        const XCVOffscreenAutoLock lock(picture.get(), 1);
        for (int y = 0; y < 32; ++y)
            for (int x = 0; x < 32; ++x)
                if (picture->MoveCursor(x, y) && (x / 4 + y / 4) % 2 == 0)
                    picture->Set8BitColor(200);
    }
    XCImagePattern tip, other; // they outlive the stroke
    tip.ImportPatternOffscreen(picture.get());
    XCPatternDraw::CreateSumiPattern(picture.get(), 64, 0.5, 0.2, 0.3, 1, 96.0); // now an ink splatter
    other.ImportPatternOffscreen(picture.get());

    PDPARAM_PATTERN pattern;
    pattern.patternKind = XCPattern::cnKindImage;
    pattern.patterns[0] = &tip;
    pattern.patterns[1] = &other;
    pattern.patternCount = 2;
    pattern.patternOrder = 2; // at random
    XCPatternDrawParam brush;
    brush.SetPatternParam(pattern);
    brush.SetSizeParam({.size = 40});
    brush.SetRotateParam({.angleRange = 3.2f, .angleControl = cnRotateDirection});
    brush.SetIntervalParam({.intervalMode = 2, .intervalAtFull = 60, .intervalKind = 3}); // percent of the size
    // [/tips]
    return paintOnto(canvas, brush);
}

XCRect paintBent(XCVOffscreen& canvas, XCImagePattern& tip) {
    // [bend]
    PDPARAM_PATTERN pattern;
    pattern.patternKind = XCPattern::cnKindImage;
    pattern.patterns[0] = &tip;
    pattern.patternCount = 1;
    XCPatternDrawParam brush;
    brush.SetPatternParam(pattern);
    brush.SetSizeParam({.size = 24, .sizeMin = 60, .sizeControl = cnControlPressure});
    brush.SetEtcParam({.overSampling = 1, .bendFlag = 1});
    // [/bend]
    return paintOnto(canvas, brush);
}

XCRect paintByPressure(XCVOffscreen& canvas) {
    XCPatternDrawParam brush;
    // [pressure]
    brush.SetSizeParam({.size = 24, .sizeMin = 128, .sizeControl = cnControlPressure});
    brush.SetColorParam(
        {.drawColor = 0xFF203080, .opacity = 255, .opacityControl = cnControlPressure | cnControlRandom});
    // [/pressure]
    return paintOnto(canvas, brush);
}

XCRect paintGrainy(XCVOffscreen& canvas, XCVOffscreen& before, XCVOffscreen& mask) {
    // [method]
    XCPatternDrawParam brush;
    brush.SetSizeParam({.size = 30});
    brush.SetColorParam({.drawColor = 0xFF2040A0, .opacity = 160});
    std::vector<std::uint8_t> grain(64 * 64); // bright texels hold paint off
    for (std::size_t i = 0; i < grain.size(); ++i)
        grain[i] = static_cast<std::uint8_t>(i * 2654435761u >> 13);

    XCPatternDrawMethod method;
    // Multiply, through a cache over `before` (the picture before the stroke), where the strongest stamp counts (2).
    method.SetOffscreen(&canvas, 1, &before, &brush, XCFastPixelMixer::Multiply, 2, 1, 0, 0);
    method.SetTextureImage(grain.data(), 64, 64, {0, 0}, 0, 2, 0); // mode 2: the texel is subtracted
    method.SetMaskOffscreen(&mask, {10, 10});                      // paint only where it selects
    // [/method]
    return paintStroke(method, brush);
}

XCRect paintWet(XCVOffscreen& canvas, XCVOffscreen& before) {
    // [water]
    XCPatternDrawParam brush;
    brush.SetSizeParam({.size = 34});
    brush.SetHardnessParam({.hardness = 120});
    brush.SetColorParam({.drawColor = 0xFFD08020});
    brush.SetMixColorParam({.mixColor = 60, .mixAlpha = 255, .smudge = 20}); // 0 and 0: smudges only

    XCPatternDrawMethod method;
    method.SetOffscreen(&canvas, 1, &before, &brush, XCFastPixelMixer::Water, 0, 1, 0, 0);
    // [/water]
    return paintStroke(method, brush);
}

XCRect paintClone(XCVOffscreen& canvas, XCVOffscreen& source) {
    // [clone]
    XCPatternDrawParam brush;
    brush.SetSizeParam({.size = 40});

    XCPatternDrawMethod method;
    method.SetOffscreen(&canvas, 0, nullptr, &brush, XCFastPixelMixer::Normal, 0, 1, 0, 0);
    method.SetCloneSrcOffscreen(&source, {-60, 0}); // pixel (x, y) is painted with (x - 60, y)
    // [/clone]
    return paintStroke(method, brush);
}

// [blur]
/// A round tip that paints with a picture of the caller's, here blurred; the mixer does the rest.
class BlurTip : public XCCirclePattern {
public:
    BlurTip(std::vector<std::uint8_t> pixels, int width) : m_pixels(std::move(pixels)), m_width(width) {}
    int Draw(XCRect* changed, XCVOffscreen* image, XCFastPixelMixer* mixer, XCPointD position, float size,
             float pressure, int antialias) override {
        mixer->SetBlurImage(m_pixels.data(), m_width * 4, {0, 0}); // blue, green, red, alpha
        return XCCirclePattern::Draw(changed, image, mixer, position, size, pressure, antialias);
    }

private:
    std::vector<std::uint8_t> m_pixels;
    int m_width;
};
// [/blur]

XCRect paintBlur(XCVOffscreen& canvas) {
    BlurTip tip(std::vector<std::uint8_t>(std::size_t(canvas.GetWidth()) * canvas.GetHeight() * 4, 200),
                canvas.GetWidth());
    XCPatternDrawParam brush;
    brush.SetSizeParam({.size = 40});
    brush.SetDesignatedPattern(&tip);
    return paintOnto(canvas, brush);
}

int paintAll() {
    xcGetVirtualMemory()->Create(64 << 20, nullptr, 1);
    int failures = 0;
    {
        const auto canvas = makeImage(32, 500, 200), before = makeImage(32, 500, 200), mask = makeImage(8, 480, 180);
        for (const auto& image : {canvas.get(), before.get(), mask.get()}) {
            image->SetClearColor(static_cast<std::uint8_t>(255)), image->SetClearColor(std::uint32_t{0xFFC0D0E0});
            for (int x = 0; x < image->GetWidth(); x += XCVOffscreen::cnBlockSize)
                const XCVOffscreenAutoLock makesBlock(image, x, 0, 1);
        }
        XCImagePattern tip;
        tip.ImportPatternOffscreen(before.get());
        for (const XCRect& changed : {paintWithPictures(*canvas), paintBent(*canvas, tip), paintByPressure(*canvas),
                                      paintGrainy(*canvas, *before, *mask), paintWet(*canvas, *before),
                                      paintClone(*canvas, *before), paintBlur(*canvas)}) {
            std::printf("changed: (%d, %d) to (%d, %d)\n", changed.left, changed.top, changed.right, changed.bottom);
            failures += changed.IsRectEmpty();
        }
    }
    xcGetVirtualMemory()->Destroy();
    return failures;
}

} // namespace

int main() {
    try {
        return paintAll();
    } catch (const XCException& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
