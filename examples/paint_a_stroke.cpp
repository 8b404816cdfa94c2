// Paints one stroke of a pressure-sensitive pen into an image far larger than memory, and reads a pixel back.
#include <ovwcmn/ovwcmn.h>

#include <cmath>
#include <cstdio>

namespace {

int paint() {
    // [readme]
    XCVirtualMemory store; // blocks of images: at most 64 MiB in memory, the others in a swap file
    store.Create(64 << 20, nullptr, 1);
    XCVOffscreen32Bit canvas;
    canvas.Create(&store, 30000, 30000, 300.0);

    XCPatternDrawParam brush; // a round, soft-edged pen of 40 pixels whose size follows the pressure
    brush.SetSizeParam({.size = 40, .sizeMin = 25, .sizeControl = cnControlPressure});
    brush.SetColorParam({.drawColor = 0xFF203080});
    brush.SetHardnessParam({.hardness = 200});

    XCPatternDrawMethod method;
    XCPatternDraw engine;
    method.SetOffscreen(&canvas, 0, nullptr, &brush, XCFastPixelMixer::Normal, 0, 1, 0, 0);
    engine.SetOffscreen({}, &method);
    method.BeginMethod();
    engine.BeginDraw(&brush);
    XCLinerStroke stroke; // x, y, pressure
    stroke.FirstStore({200, 900, 0.2f});
    for (int i = 1; i <= 400; ++i)
        stroke.Store({200.0 + 70 * i, 900 + 600 * std::sin(i / 20.0), 0.6f + 0.4f * float(std::sin(i / 9.0))});
    XCRect changed;
    engine.DrawStroke(&changed, &stroke, 1);
    engine.EndDraw(&changed);
    method.EndMethod();
    // [/readme]

    std::printf("changed: (%d, %d) to (%d, %d)\n", changed.left, changed.top, changed.right, changed.bottom);
    XCVOffscreenAutoLock lock(&canvas, 200, 900, 0);
    return canvas.Get32BitColor() >> 24 != 0 ? 0 : 1;
}

} // namespace

int main() {
    try {
        return paint();
    } catch (const XCException& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
