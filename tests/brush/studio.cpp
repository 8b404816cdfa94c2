#include "studio.h"

#include "ovwcmn/xcvirtualmemory.h"

namespace ovw::test {
namespace {

/// The caches of a stroke live in the library's own store, which other tests of the process may have destroyed.
void createLibraryStore() {
    static const struct AtExit {
        ~AtExit() { xcDestroyVirtualMemory(); }
    } s_atExit;
    _CREATEVMPARAM settings{0, nullptr, 0, 0};
    xcCreateVirtualMemory(&settings);
}

TestStore& storeOfImages() {
    createLibraryStore();
    return sharedStore();
}

} // namespace

Studio::Studio(int depth, const Method& settings, double scale)
    : image(storeOfImages(), depth, cnWidth, cnHeight), before(sharedStore(), depth, cnWidth, cnHeight) {
    PDOFFSCREENINFO info;
    info.scale = scale;
    info.clip = XCRect(0, 0, cnWidth, cnHeight);
    method.SetOffscreen(image.get(), settings.useCache, before.get(), &brush, settings.kind, settings.cacheKind,
                        settings.flag, settings.densityFlag, settings.lowDepthSoft);
    method.BeginMethod();
    engine.SetOffscreen(info, &method);
}

Studio::~Studio() {
    method.EndMethod();
    method.ReleaseOffscreen();
}

void Studio::begin() {
    xcSetRandomSeed(31);
    engine.BeginDraw(&brush);
}

int Studio::draw(const std::vector<XCStrokePoint>& points, XCRect* changed) {
    begin();
    XCLinerStroke stroke = polyline(points);
    const int result = engine.DrawStroke(changed, &stroke, 1);
    engine.EndDraw(nullptr);
    return result;
}

void Studio::fill(std::uint32_t value) {
    for (int y = 0; y < cnHeight; ++y) {
        image.fillRow(0, cnWidth, y, value);
        before.fillRow(0, cnWidth, y, value);
    }
}

XCStrokePoint penAt(double x, double y, float pressure) {
    XCStrokePoint point;
    point.x = x;
    point.y = y;
    point.pressure = pressure;
    return point;
}

XCLinerStroke polyline(const std::vector<XCStrokePoint>& points) {
    XCLinerStroke stroke;
    for (const XCStrokePoint& point : points)
        stroke.Store(point);
    return stroke;
}

void setRoundBrush(XCPatternDrawParam& brush, int size, int hardness, int opacity, int percent) {
    brush.SetSizeParam({size, 0, 0});
    brush.SetHardnessParam({hardness, 0, 0});
    brush.SetColorParam({0xFF8DC85A, 0xFFFFFFFF, opacity, 0, 0});
    brush.SetIntervalParam({2, percent, percent, 0, 3});
}

const std::vector<XCStrokePoint>& winding() {
    static const std::vector<XCStrokePoint> s_points = {
        penAt(60.25, 70.5, 0.2f),    penAt(230, 90, 0.9f),    penAt(231, 92, 0.8f),     penAt(300.5, 260, 0.5f),
        penAt(299, 262.25, 0.5f),    penAt(299, 264, 1.0f),   penAt(140, 330.75, 0.7f), penAt(140, 330.75, 0.3f),
        penAt(-20.5, 200.125, 0.4f), penAt(60.25, 70.5, 0.6f)};
    return s_points;
}

} // namespace ovw::test
