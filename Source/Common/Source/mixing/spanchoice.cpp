// Which kernel paints a span, and whether what it needs is there.

#include "mixing/spanpainter.h"
#include "ovwcmn/xcvoffscreen.h"

#include <algorithm>

namespace ovw::mixing {

DepthColumn columnOf(int depth) {
    switch (depth) {
    case 1:
    case 2: return DepthBits;
    case 8: return Depth8;
    case 24: return Depth24;
    case 32: return Depth32;
    default: return cnDepthColumns;
    }
}

/// Takes the part of the span inside the block; false when there is none, or no memory to paint.
bool SpanPainter::place(int x1, int x2, int y) {
    constexpr int cnBlock = XCVOffscreen::cnBlockSize;
    const int left = std::max(x1, m_mixer.m_blockLeft);
    const int right = std::min(x2, m_mixer.m_blockLeft + (cnBlock - 1));
    if (left > right || (y & -cnBlock) != m_mixer.m_blockTop)
        return false;
    if (columnOf(m_depth) == cnDepthColumns || !m_mixer.m_dst->GetBaseAddress())
        return false;
    goTo(left, y, right - left + 1);
    m_kernels = &kernels(m_n);
    return true;
}

/// Null when nothing is painted. Coverages scale one of the two alphas pixel by pixel, so only the other is judged
/// here.
const KernelPlan* SpanPainter::choosePlan(const float* coverage) const {
    const bool scalesCache = coverage && m_mixer.m_cache;
    const bool scalesMix = coverage && !m_mixer.m_cache;
    const bool isCacheOff = m_mixer.m_cacheAlpha == 0 && !scalesCache;
    const bool isMixOff = m_mixer.m_mixAlpha == 0 && !scalesMix;
    if (isCacheOff)
        return nullptr;
    const KernelPlan* plan = nullptr;
    if (m_mixer.m_blurBits || m_mixer.m_clone)
        plan = isMixOff ? nullptr : &planOf(m_mixer.m_blurBits ? Kernel::Blur : Kernel::Clone);
    else if (isWater())
        plan = &planOf(Kernel::Water);
    else if (!isMixOff && m_mixer.m_a != 0)
        plan = m_mixer.m_cache ? &planOf(Kernel::Cache) : plainPlan();
    return plan && isReady(*plan) ? plan : nullptr;
}

const KernelPlan* SpanPainter::plainPlan() const {
    if (isBits())
        return &planOf(Kernel::FastestBits);
    const bool isPlain = !m_mixer.m_mask && !hasStyle(XCFastPixelMixer::STYLE_GAUSS);
    return &planOf(isPlain ? Kernel::Fastest : Kernel::Direct);
}

const KernelPlan* SpanPainter::chooseCopyPlan() const {
    const KernelPlan* plan = nullptr;
    if (!m_mixer.m_cache)
        plan = &planOf(Kernel::DirectCopy);
    else if (!m_mixer.m_cacheColor && isWater() && (m_depth == 8 || m_depth == 32))
        return nullptr; // water needs both caches
    else if (!m_mixer.m_cacheColor)
        plan = &planOf(isBits() ? Kernel::GrayCopyBits : Kernel::GrayCopy);
    else if (isWater())
        plan = &planOf(Kernel::WaterCopy);
    else if (m_depth >= 24)
        plan = &planOf(m_depth == 24 ? Kernel::ColorCopy24 : Kernel::ColorCopy32);
    return plan && isReady(*plan) ? plan : nullptr;
}

bool SpanPainter::isReady(const KernelPlan& plan) const {
    if (usesGauss(plan) && !m_mixer.m_plotGauss)
        return false;
    if (plan.cache == CacheRule::None)
        return true;
    if (!hasCache())
        return false;
    if (!isBits() && (!m_mixer.m_composite || m_mixer.m_composite->GetDepth() != m_depth))
        return false;
    if (plan.cache == CacheRule::Coverage)
        return true;
    if (plan.cache == CacheRule::Water && m_depth != 8 && (m_depth != 32 || !m_mixer.m_colorAverage))
        return false;
    // Where paint is an image's colours, a cache without alpha holds them as well.
    return hasColorCache(m_depth) || (plan.cache == CacheRule::Color && hasColorCache(24));
}

bool SpanPainter::hasCache() const {
    return m_mixer.m_cache && m_mixer.m_cache->GetDepth() == 16 && m_mixer.m_cache->GetBaseAddress();
}

bool SpanPainter::hasColorCache(int depth) const {
    const XCVOffscreen* image = m_mixer.m_cacheColor;
    return image && image->GetDepth() == depth && image->GetBaseAddress();
}

bool SpanPainter::isWater() const {
    return m_mixer.m_composition == XCFastPixelMixer::Water || m_mixer.m_composition == XCFastPixelMixer::WaterMultiply;
}

} // namespace ovw::mixing
