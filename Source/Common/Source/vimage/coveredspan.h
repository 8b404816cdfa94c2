#ifndef OVW_VIMAGE_COVEREDSPAN_H
#define OVW_VIMAGE_COVEREDSPAN_H

#include "vimage/boxaverage.h"
#include "vimage/resamplemap.h"

#include <cstdint>

namespace ovw::vimage {

/// The source pixels that a destination pixel covers on one axis, both ends included; between the ends they weigh 1.
struct CoveredSpan {
    std::int64_t first;
    std::int64_t last;
    double firstWeight;
    double lastWeight;

    double weight(std::int64_t i) const { return i == first ? firstWeight : i == last ? lastWeight : 1.0; }
    std::int64_t pixels() const { return last - first + 1; }

    static CoveredSpan of(const _XCRESOLUTIONTABLE& entry, std::int64_t from) {
        return {from + entry.start, from + entry.start + entry.count, entry.firstWeight, entry.lastWeight};
    }
};

/// Spans weighted by area, for each destination pixel of an axis.
class AreaSpans {
public:
    explicit AreaSpans(const AxisPlan& plan) : m_plan(plan), m_scale(double(plan.sourceCount) / plan.count) {}

    int begin() const { return m_plan.to; }
    int end() const { return endOf(m_plan.to, m_plan.count); }
    double scale() const { return m_scale; } ///< source pixels a destination pixel
    CoveredSpan operator()(int i) const {
        const double step = static_cast<double>(std::int64_t{i} - m_plan.to);
        return CoveredSpan::of(resolutionEntry(step * m_scale, (step + 1) * m_scale), m_plan.from);
    }

private:
    AxisPlan m_plan;
    double m_scale;
};

/// Spans of whole pixels, at least one.
class WholeSpans {
public:
    explicit WholeSpans(const AxisPlan& plan) : m_plan(plan), m_map(NearestMap::ofRatio(plan)) {}

    int begin() const { return m_plan.to; }
    int end() const { return endOf(m_plan.to, m_plan.count); }
    CoveredSpan operator()(int i) const {
        const std::int64_t first = m_map(i);
        const bool isNearest = m_plan.count > m_plan.sourceCount;
        return {first, isNearest ? first : m_map(i + 1) - 1, 1.0, 1.0};
    }

private:
    AxisPlan m_plan;
    NearestMap m_map;
};

} // namespace ovw::vimage

#endif // OVW_VIMAGE_COVEREDSPAN_H
