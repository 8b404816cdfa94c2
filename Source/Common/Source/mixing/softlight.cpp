#include "mixing/kerneltable.h"

#include <cmath>
#include <vector>

namespace ovw::mixing {
namespace {

std::vector<float> makeCurves() {
    std::vector<float> curves;
    curves.reserve(256 * 256);
    for (int paint = 0; paint < 256; ++paint) {
        const double exponent = paint > 127 ? 128.0 / paint : (255 - paint) / 128.0;
        for (int below = 0; below < 256; ++below)
            curves.push_back(static_cast<float>(255.0 * std::pow(below / 255.0, exponent)));
    }
    return curves;
}

} // namespace

const float* softLightCurves() {
    static const std::vector<float> s_curves = makeCurves();
    return s_curves.data();
}

} // namespace ovw::mixing
