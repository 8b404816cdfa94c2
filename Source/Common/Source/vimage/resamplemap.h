#ifndef OVW_VIMAGE_RESAMPLEMAP_H
#define OVW_VIMAGE_RESAMPLEMAP_H

/// @file
/// Which source pixels belong to a destination pixel, on one axis.

#include "ovwcmn/detail/toint.h"
#include "vimage/numbers.h"

#include <algorithm>
#include <cstdint>

namespace ovw::vimage {

/// The place of a resampled rectangle on one axis: count destination pixels from `to`, sourceCount pixels from `from`.
struct AxisPlan {
    int to;
    int count;
    int from;
    int sourceCount;
};

/// The one source pixel of each destination pixel: steps of `numerator / denominator` whole pixels, or of `scale`.
class NearestMap {
public:
    /// from + i x sourceCount / count in whole numbers.
    static NearestMap ofRatio(const AxisPlan& plan) { return NearestMap(plan, plan.sourceCount, plan.count, 0); }
    static NearestMap ofFactor(const AxisPlan& plan, int factor) { return NearestMap(plan, 1, factor, 0); }
    /// from + the truncated i x scale.
    static NearestMap ofScale(const AxisPlan& plan, double scale) { return NearestMap(plan, 0, 0, scale); }

    int begin() const { return m_plan.to; }
    int end() const { return endOf(m_plan.to, m_plan.count); }
    /// i: of the destination.
    std::int64_t operator()(int i) const {
        const std::int64_t step = std::int64_t{i} - m_plan.to;
        return m_plan.from + (m_denominator ? step * m_numerator / m_denominator
                                            : std::int64_t{truncateToInt(static_cast<double>(step) * m_scale)});
    }

private:
    NearestMap(const AxisPlan& plan, int numerator, int denominator, double scale)
        : m_plan(plan), m_numerator(numerator), m_denominator(denominator), m_scale(scale) {}

    AxisPlan m_plan;
    int m_numerator;
    int m_denominator;
    double m_scale;
};

} // namespace ovw::vimage

#endif // OVW_VIMAGE_RESAMPLEMAP_H
