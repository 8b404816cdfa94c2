#ifndef OVWBENCH_STAMPER_H
#define OVWBENCH_STAMPER_H

/// @file
/// The drawing engine, ready to paint single stamps.

#include "dabcopy.h"

#include <ovwcmn/xcfastpixelmixer.h>
#include <ovwcmn/xcpattern.h>
#include <ovwcmn/xcpatterndraw.h>
#include <ovwcmn/xcpatterndrawparam.h>

#include <functional>
#include <vector>

namespace ovwbench {

/// A walk of steps of half a radius on a square canvas, turned back at its border.
std::vector<Dab> walk(int side, int radius, int count);

/// The stamps of one brush on a canvas.
class Stamper {
public:
    struct Settings {
        bool usesCache = false;
        int composition = XCFastPixelMixer::Normal;
        /// Called before the strokes begin, for what else a method takes.
        std::function<void(XCPatternDrawMethod& method)> prepare = {};
    };

    /// A soft stamp has half the opacity and half the hardness.
    Stamper(Canvas& canvas, XCPattern& tip, int size, bool isSoft, const Settings& settings);
    ~Stamper();

    void stamp(const std::vector<Dab>& dabs);
    /// The start of a stroke: an empty cache, its blocks in memory.
    void restore();

private:
    XCVOffscreen32Bit m_before;
    XCPatternDrawParam m_brush;
    XCPatternDrawMethod m_method;
    XCPatternDraw m_engine;
    PLOTPATTERNPARAM m_stamp;
};

} // namespace ovwbench

#endif // OVWBENCH_STAMPER_H
