#ifndef OVW_TESTS_MIXING_EASEL_H
#define OVW_TESTS_MIXING_EASEL_H

#include "ovwcmn/xcfastpixelmixer.h"
#include "support/testimage.h"

#include <cstdint>

namespace ovw::test {

constexpr std::uint32_t cnBelow = 0x2864D2;   // blue 40, green 100, red 210
constexpr std::uint32_t cnPaint = 0xFF8DC85A; // blue 141, green 200, red 90

constexpr std::uint32_t withAlpha(std::uint32_t color, std::uint32_t alpha) { return color | alpha << 24; }

/// A destination of 400 x 40 pixels, with a cache and the image before the stroke where asked for, and a mixer for it.
class Easel {
public:
    explicit Easel(int depth, bool hasCache = false, bool hasColorCache = false)
        : m_destination(m_store, depth, 400, 40), m_cache(m_store, 16, 400, 40), m_composite(m_store, depth, 400, 40),
          m_colorCache(m_store, depth < 8 ? 24 : depth, 400, 40), m_destinationLock(m_destination.get(), 1),
          m_cacheLock(m_cache.get(), 1), m_compositeLock(m_composite.get(), 0), m_colorLock(m_colorCache.get(), 1) {
        mixer.SetDstOffscreen(m_destination.get());
        mixer.SetColor(cnPaint);
        if (hasCache) {
            mixer.SetCacheOffscreen(m_cache.get());
            mixer.SetCompositeOffscreen(m_composite.get());
            mixer.SetStyle(XCFastPixelMixer::STYLE_CACHE_OVER);
        }
        if (hasColorCache)
            mixer.SetCacheColorOffscreen(m_colorCache.get());
        mixer.SetDrawCompositioin(XCFastPixelMixer::Normal);
    }

    /// Sets pixel (x, 0) of the destination and of the image before the stroke.
    void set(int x, std::uint32_t value) {
        m_destination.setValue(x, 0, value);
        m_composite.setValue(x, 0, value);
    }
    void paint(int x1, int x2, int y = 0) {
        mixer.MoveCursorToBlock(x1, y);
        mixer.DoLineRow(x1, x2, y);
    }
    std::uint32_t value(int x, int y = 0) const { return m_destination.value(x, y); }

    XCFastPixelMixer mixer;
    TestImage& destination() { return m_destination; }
    TestImage& cache() { return m_cache; }
    TestImage& composite() { return m_composite; }
    TestImage& colorCache() { return m_colorCache; }
    TestStore& store() { return m_store; }

private:
    TestStore m_store;
    TestImage m_destination, m_cache, m_composite, m_colorCache;
    XCVOffscreenAutoLock m_destinationLock, m_cacheLock, m_compositeLock, m_colorLock;
};

} // namespace ovw::test

#endif // OVW_TESTS_MIXING_EASEL_H
