#include "brush/plotpattern.h"

#include "brush/methodkind.h"
#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcpattern.h"
#include "ovwcmn/xcpatterndraw.h"
#include "ovwcmn/xcpatterndrawparam.h"
#include "ovwcmn/xcplotgauss.h"
#include "ovwcmn/xcvoffscreen.h"

namespace ovw::brush {

namespace {

using Mixer = XCFastPixelMixer;

constexpr int cnMinSoftDepth = 8;
constexpr double cnFullHardness = 255.0;
/// Stamps below this size become harder, so that they do not fade away.
constexpr double cnSmallSize = 4.0;
constexpr double cnSmallHardness = 252.45;
/// Stamps below this size are drawn in it, with their opacity reduced.
constexpr double cnLeastSize = 1.8;

// How stamps accumulate, as XCPatternDrawMethod::SetOffscreen takes it.
constexpr int cnCacheOverEach = 0; ///< over each other, each with its own opacity
constexpr int cnCacheOver = 1;
constexpr int cnCacheMax = 2;
constexpr int cnCacheAdd = 3;

} // namespace

StampSetup::StampSetup(const XCPatternDrawMethod& method, const PLOTPATTERNPARAM& stamp)
    : m_method(method), m_stamp(stamp), m_alpha(stamp.opacityScale),
      m_size(static_cast<double>(stamp.sizeScale) * stamp.size),
      m_hardness(static_cast<double>(stamp.hardness) * stamp.hardnessScale), m_antialias(stamp.overSampling),
      m_isDeep(method.m_target->GetDepth() >= cnMinSoftDepth), m_allowsSoft(m_isDeep || method.m_lowDepthSoft) {
    chooseSoftness();
    if (m_size < cnSmallSize)
        strengthenSmallStamp();
    if (!m_isDeep)
        m_antialias = 0;
}

void StampSetup::chooseSoftness() {
    m_isSoft = m_stamp.pattern->kind == XCPattern::cnKindCircle && m_hardness < cnFullHardness && m_allowsSoft;
    // A soft rim is smooth enough by itself when it is wide.
    if (m_isSoft && m_stamp.pattern->IsTrueCircle() && m_size > 6.0 && (cnFullHardness - m_hardness) * m_size > 50.0)
        m_antialias = 0;
}

void StampSetup::strengthenSmallStamp() {
    if (m_isSoft && m_hardness < cnSmallHardness) {
        double hardness = cnSmallHardness;
        if (m_size > 2.0)
            hardness = (cnSmallSize - m_size) * (cnSmallHardness - m_hardness) * 0.5 + m_hardness;
        m_alpha *= (300.0 - hardness) / (300.0 - m_hardness);
        m_hardness = hardness;
    }
    if ((m_antialias || m_isSoft) && m_size < cnLeastSize) {
        m_alpha *= m_size / cnLeastSize;
        m_size = cnLeastSize;
    }
}

/// Whether the stamp paints every pixel that it covers in full.
bool StampSetup::isDirect() const {
    const std::uint32_t colorAlpha = m_stamp.color >> 24;
    const bool isPartial = m_isSoft || m_stamp.opacity < 255 || m_stamp.opacityScale < 1.0f ||
                           (colorAlpha > 0 && colorAlpha < 255) || m_stamp.pattern->kind == XCPattern::cnKindImage;
    return !(isPartial && m_allowsSoft);
}

/// Weakens closely spaced stamps, which lie over each other many times.
double StampSetup::densityFactor() const {
    if (!m_method.m_densityFlag || isSmudging(m_method.m_methodKind) || (!m_isDeep && isDirect()))
        return 1.0;
    const double ratio = m_stamp.intervalRatio;
    if (m_method.m_cacheKind == cnCacheOverEach && ratio < 0.33)
        return ratio * 3.0;
    if (m_method.m_cacheKind == cnCacheOver && ratio < 0.2)
        return ratio * 4.5 + 0.1;
    return 1.0;
}

unsigned StampSetup::accumulationStyle() const {
    switch (m_method.m_cacheKind) {
    case cnCacheOverEach:
    case cnCacheOver: return Mixer::STYLE_CACHE_OVER;
    case cnCacheMax: return Mixer::STYLE_CACHE_MAX;
    case cnCacheAdd: return Mixer::STYLE_CACHE_ADD;
    default: return 0;
    }
}

void StampSetup::setImages(XCFastPixelMixer& mixer) const {
    mixer.SetDstOffscreen(m_method.m_target);
    mixer.SetCacheOffscreen(m_method.m_cache.get());
    mixer.SetCacheColorOffscreen(m_method.m_colorCache.get());
    mixer.SetCompositeOffscreen(m_method.m_cacheReference);
    mixer.SetMask(m_method.m_mask, m_method.m_maskOffset);
    mixer.SetCloneOffscreen(m_method.m_cloneSource, m_method.m_cloneOrigin);
}

void StampSetup::setColor(XCFastPixelMixer& mixer) const {
    if (m_method.m_methodKind == Mixer::Erase || m_method.m_cloneSource) {
        mixer.SetColor(255, 0, 0, 0);
        return;
    }
    mixer.SetColor(m_stamp.color);
    mixer.SetSubColor(m_stamp.subColor);
}

void StampSetup::setAlpha(XCFastPixelMixer& mixer) const {
    const double opacity = m_stamp.opacity / 255.0;
    if (!m_method.m_cache) {
        // Image stamps take their opacity from the cache's alpha even without one.
        mixer.SetMixAlpha(static_cast<float>(opacity * m_alpha));
        mixer.SetCacheAlpha(static_cast<float>(opacity * m_alpha));
        return;
    }
    const double alpha = m_alpha * densityFactor();
    mixer.SetStyleFlag(accumulationStyle(), 1);
    if (m_method.m_cacheKind == cnCacheOverEach) {
        mixer.SetCacheAlpha(static_cast<float>(opacity * alpha));
    } else {
        mixer.SetCacheAlpha(static_cast<float>(alpha));
        mixer.SetMixAlpha(static_cast<float>(opacity));
    }
}

void StampSetup::setTexture(XCFastPixelMixer& mixer) const {
    const auto& texture = m_method.m_texture;
    if (!texture.texels || texture.width <= 0 || texture.height <= 0 || !m_isDeep)
        return;
    mixer.SetTexture(texture.texels, texture.width, texture.height, texture.offset, texture.density, texture.mode);
    mixer.SetStyleFlag(Mixer::STYLE_TEXTURE_AFTER, texture.afterCache);
}

void StampSetup::setFalloff(XCFastPixelMixer& mixer, XCPlotGauss& falloff) const {
    if (!m_isSoft) {
        falloff.ClearTable();
        return;
    }
    mixer.SetStyleFlag(Mixer::STYLE_GAUSS, 1);
    mixer.SetPlotGauss(&falloff);
    const double spread = (cnFullHardness - m_hardness) * 0.75 / cnFullHardness + 1.0;
    // The table follows the unscaled size: it stays the same while the pressure changes.
    falloff.StartPlot({m_stamp.x, m_stamp.y}, static_cast<float>(m_stamp.size * spread * 0.5),
                      static_cast<float>(m_size * spread * 0.5), static_cast<float>(m_hardness / cnFullHardness),
                      m_stamp.sizeFixed, m_stamp.hardnessFixed);
}

void StampSetup::configure(XCFastPixelMixer& mixer, XCPlotGauss& falloff, XCColorAverage* average, int noColor) const {
    setImages(mixer);
    mixer.SetDrawCompositioin(m_method.m_methodKind);
    mixer.SetStyleFlag(Mixer::STYLE_SAMPLE_ONLY, noColor);
    mixer.SetStyleFlag(Mixer::STYLE_IMAGE_COLOR, m_method.m_methodFlag);
    mixer.SetStyleFlag(Mixer::STYLE_DITHER, !m_isDeep && !isDirect());
    mixer.SetStyleFlag(Mixer::STYLE_ANTIALIAS, m_antialias);
    mixer.SetColorAverage(average);
    setColor(mixer);
    setAlpha(mixer);
    setTexture(mixer);
    setFalloff(mixer, falloff);
}

} // namespace ovw::brush
