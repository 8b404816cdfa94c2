#include "ovwcmn/xcpatterndraw.h"

#include "brush/methodkind.h"
#include "brush/methodlocks.h"
#include "foundation/nomemory.h"
#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcpatterndrawparam.h"
#include "ovwcmn/xcvirtualmemory.h"
#include "ovwcmn/xcvoffscreen.h"

using ovw::foundation::orNoMemory;

namespace {

using ovw::brush::isSmudging;

constexpr int cnCacheDepth = 16;
/// Holds how much of which of two colours a pixel of 2 bits got.
constexpr int cnToneDepth = 24;

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
                                       XCPatternDrawParam* param, int methodKind, int cacheKind, int methodFlag,
                                       int densityFlag, int lowDepthSoft) {
    EndMethod();
    m_target = target;
    m_cacheReference = useCache ? cacheReference : nullptr;
    m_methodKind = !useCache && methodKind == XCFastPixelMixer::Normal ? XCFastPixelMixer::Replace : methodKind;
    m_cacheKind = cacheKind;
    m_methodFlag = methodFlag;
    m_densityFlag = densityFlag;
    m_lowDepthSoft = lowDepthSoft;
    prepareCaches(param ? param->GetIamgePatternBitCount() : 0);
}

/// The depth of the image that keeps a stroke's colours, as the mixer takes it; 0 when it keeps none. Smudging methods
/// do, and those that paint a tip's own colours, where there is room for more than one.
int XCPatternDrawMethod::colorCacheDepth(int tipBitCount) const {
    const int depth = m_target ? m_target->GetDepth() : 0;
    if (isSmudging(m_methodKind))
        return depth;
    if (!m_methodFlag || m_methodKind == XCFastPixelMixer::Erase || (tipBitCount != 2 && tipBitCount != 32))
        return 0;
    switch (depth) {
    case 2: return cnToneDepth;
    case 24:
    case 32: return depth;
    default: return 0;
    }
}

void XCPatternDrawMethod::prepareCaches(int tipBitCount) {
    if (m_cacheReference)
        prepareCache(m_cache, *m_cacheReference, cnCacheDepth);
    else
        m_cache.reset();
    const int colorDepth = colorCacheDepth(tipBitCount);
    if (m_cacheReference && colorDepth != 0)
        prepareCache(m_colorCache, *m_cacheReference, colorDepth);
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
    auto locks = orNoMemory([] { return std::make_unique<ovw::brush::MethodLocks>(); });
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
