#include "ovwcmn/xcpatterndraw.h"

#include "brush/methodlocks.h"
#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcvirtualmemory.h"
#include "ovwcmn/xcvoffscreen.h"

namespace {

constexpr int cnCacheDepth = 16;

bool isSmudging(int methodKind) {
    return methodKind == XCFastPixelMixer::Water || methodKind == XCFastPixelMixer::WaterMultiply;
}

bool matches(const XCVOffscreen* image, const XCVOffscreen& reference, int depth) {
    return image && image->GetDepth() == depth && image->GetWidth() == reference.GetWidth() &&
           image->GetHeight() == reference.GetHeight() && image->GetResolution() == reference.GetResolution();
}

/// Empties an image that fits, else replaces it by a new one.
void prepareCache(std::unique_ptr<XCVOffscreen>& image, const XCVOffscreen& reference, int depth) {
    if (matches(image.get(), reference, depth)) {
        image->DestroyAllBlock();
        return;
    }
    image.reset(XCVOffscreen::CreateOffscreen(depth));
    if (image)
        image->Create(xcGetVirtualMemory(), reference.GetWidth(), reference.GetHeight(), reference.GetResolution());
}

void lockIfSet(XCVOffscreenAutoLock& lock, XCVOffscreen* image, int edit) {
    if (image)
        lock.Lock(image, edit);
}

} // namespace

XCPatternDrawMethod::XCPatternDrawMethod() = default;
XCPatternDrawMethod::~XCPatternDrawMethod() = default;

void XCPatternDrawMethod::SetOffscreen(XCVOffscreen* target, int useCache, XCVOffscreen* cacheReference,
                                       XCPatternDrawParam*, int methodKind, int cacheKind, int methodFlag,
                                       int densityFlag, int lowDepthSoft) {
    EndMethod();
    m_target = target;
    m_cacheReference = useCache ? cacheReference : nullptr;
    m_methodKind = !useCache && methodKind == XCFastPixelMixer::Normal ? XCFastPixelMixer::Replace : methodKind;
    m_cacheKind = cacheKind;
    m_methodFlag = methodFlag;
    m_densityFlag = densityFlag;
    m_lowDepthSoft = lowDepthSoft;
    prepareCaches();
}

/// A smudging method also keeps the stroke's colours, in the target's depth.
void XCPatternDrawMethod::prepareCaches() {
    if (m_cacheReference)
        prepareCache(m_cache, *m_cacheReference, cnCacheDepth);
    else
        m_cache.reset();
    if (m_cacheReference && m_target && isSmudging(m_methodKind))
        prepareCache(m_colorCache, *m_cacheReference, m_target->GetDepth());
    else
        m_colorCache.reset();
}

void XCPatternDrawMethod::SetMaskOffscreen(XCVOffscreen* mask, const XCPoint& offset) {
    m_mask = mask;
    m_maskOffset = offset;
}

void XCPatternDrawMethod::SetCloneSrcOffscreen(XCVOffscreen* source, tagPOINT origin) {
    m_cloneSource = source;
    m_cloneOrigin = origin;
}

void XCPatternDrawMethod::SetTextureImage(std::uint8_t* texels, int width, int height, const XCPoint& offset,
                                          int density, int mode, int afterCache) {
    m_texture = {texels, width, height, offset, density, mode, afterCache};
}

void XCPatternDrawMethod::GetTextureInfo(int& width, int& height, XCPoint& offset, int& density, int& mode,
                                         int& afterCache) const {
    width = m_texture.width;
    height = m_texture.height;
    offset = m_texture.offset;
    density = m_texture.density;
    mode = m_texture.mode;
    afterCache = m_texture.afterCache;
}

int XCPatternDrawMethod::BeginMethod() {
    m_locks.reset();
    auto locks = std::make_unique<ovw::brush::MethodLocks>();
    lockIfSet(locks->target, m_target, 1);
    lockIfSet(locks->cacheReference, m_cacheReference, 0);
    lockIfSet(locks->cache, m_cache.get(), 1);
    lockIfSet(locks->colorCache, m_colorCache.get(), 1);
    lockIfSet(locks->mask, m_mask, 0);
    lockIfSet(locks->cloneSource, m_cloneSource, 0);
    m_locks = std::move(locks);
    return 1;
}

void XCPatternDrawMethod::EndMethod() { m_locks.reset(); }

void XCPatternDrawMethod::ReleaseOffscreen() {
    EndMethod();
    m_cache.reset();
    m_colorCache.reset();
    m_target = m_cacheReference = m_mask = m_cloneSource = nullptr;
    m_texture = {};
}

void XCPatternDrawMethod::ClearTempImage() {
    // A lock would hold on to a block that is no more.
    const bool isBegun = m_locks != nullptr;
    EndMethod();
    for (XCVOffscreen* image : {m_cache.get(), m_colorCache.get()})
        if (image)
            image->DestroyAllBlock();
    if (isBegun)
        BeginMethod();
}
