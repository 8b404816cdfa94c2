#ifndef OVW_TESTS_BRUSH_STUDIO_H
#define OVW_TESTS_BRUSH_STUDIO_H

#include "canvas.h"
#include "ovwcmn/xcpattern.h"
#include "ovwcmn/xcpatterndraw.h"
#include "ovwcmn/xcpatterndrawparam.h"
#include "ovwcmn/xcstroke.h"

#include <functional>
#include <initializer_list>
#include <vector>

/// @file
/// A drawing engine with everything it needs, and a tip that notes its stamps.

namespace ovw::test {

struct Method {
    int useCache = 0;
    int kind = 1;
    int cacheKind = 0;
    int flag = 0;
    int densityFlag = 0;
    int lowDepthSoft = 0;
};

/// An engine whose method is begun, ready for BeginDraw.
class Studio {
public:
    explicit Studio(int depth, const Method& settings = {}, double scale = 1.0);
    ~Studio();

    /// Begins a stroke with the brush, with the same random numbers every time.
    void begin();
    /// Begins, draws the points as one polyline and ends. @return what DrawStroke answered
    int draw(const std::vector<XCStrokePoint>& points, XCRect* changed = nullptr);
    /// Paints all of the image and of the image before the stroke.
    void fill(std::uint32_t value);
    Pixels pixels() const { return pixelsOf(image); }

    static constexpr int cnWidth = 520;
    static constexpr int cnHeight = 500;

    TestImage image;
    TestImage before; ///< the stroke
    XCPatternDrawMethod method;
    XCPatternDraw engine;
    XCPatternDrawParam brush;
};

XCStrokePoint penAt(double x, double y, float pressure = 1.0f);
XCLinerStroke polyline(const std::vector<XCStrokePoint>& points);
/// A round brush with the interval in percent of its size.
void setRoundBrush(XCPatternDrawParam& brush, int size, int hardness, int opacity, int percent);
/// A closed path over several tiles with turns, short pieces and changing pressure.
const std::vector<XCStrokePoint>& winding();

/// Notes what it is asked to draw.
class RecordingTip : public XCPattern {
public:
    struct Stamp {
        double x, y;
        float size, pressure;
        int antialias;
        float sizeRate, rotation;

        friend bool operator==(const Stamp&, const Stamp&) = default;
    };

    int Draw(XCRect* changed, XCVOffscreen*, XCFastPixelMixer*, XCPointD position, float size, float pressure,
             int antialias) override {
        stamps.push_back({position.x, position.y, size, pressure, antialias, sizeRate, rotation});
        *changed = XCRect(int(position.x) - 1, int(position.y) - 1, int(position.x) + 2, int(position.y) + 2);
        if (whenStamped)
            whenStamped();
        return 1;
    }

    std::vector<Stamp> stamps;
    std::function<void()> whenStamped;
};

} // namespace ovw::test

#endif // OVW_TESTS_BRUSH_STUDIO_H
