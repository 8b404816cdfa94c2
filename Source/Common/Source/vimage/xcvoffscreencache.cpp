#include "ovwcmn/xcvoffscreencache.h"

#include "foundation/nomemory.h"
#include "ovwcmn/xcvoffscreen.h"

using ovw::foundation::orNoMemory;

namespace {

constexpr int cnCheckerCell = 8;

/// The flags or states of an image's blocks as new ones, all 0.
template <class T>
void sizeTo(XCTArray<T, 0>& marks, const XCVOffscreen& image) {
    marks = XCTArray<T, 0>();
    marks.SetSize(image.GetBlockCount(nullptr, nullptr));
}

template <class Action>
void forEachBlock(const XCVOffscreen& image, const XCTArray<tagRECT, 0>& rects, Action action) {
    for (const tagRECT& rect : rects)
        action(image.GetBlockIndex(rect.left, rect.top));
}

/// Of the blocks that rect meets, or without one of all `count` marks: there may be more of them than blocks now.
template <class Action>
void forEachBlock(const XCVOffscreen& image, const XCRect* rect, int count, Action action) {
    if (!rect) {
        for (int index = 0; index < count; ++index)
            action(index);
        return;
    }
    XCTArray<tagRECT, 0> blocks;
    image.GetBlockArea(*rect, blocks, 1);
    forEachBlock(image, blocks, action);
}

template <class T>
bool has(const XCTArray<T, 0>& marks, int index) {
    return index >= 0 && index < marks.GetSize();
}

} // namespace

// ---- Cache

XCVOffscreenCache::XCVOffscreenCache() = default;
XCVOffscreenCache::~XCVOffscreenCache() = default;

XCVOffscreenCache* XCVOffscreen::CreateOffscreenCache(int depth) {
    auto cache = orNoMemory([] { return std::make_unique<XCVOffscreenCache>(); });
    for (std::unique_ptr<XCVOffscreen>* const image : {&cache->m_image, &cache->m_lower}) {
        image->reset(CreateOffscreen(depth));
        if (!*image)
            return nullptr;
        (*image)->SetProtectMode(1);
    }
    return cache.release();
}

void XCVOffscreen::DeleteOffscreenCache(XCVOffscreenCache* cache) { delete cache; }

void XCVOffscreenCache::Create(XCVirtualMemory* vm, int width, int height, double resolution) {
    try {
        m_image->Create(vm, width, height, resolution);
        sizeTo(m_flags, *m_image);
        if (m_lower) {
            m_lower->Create(vm, width, height, resolution);
            sizeTo(m_lowerMarks, *m_image);
        }
    } catch (...) {
        m_image.reset();
        m_lower.reset();
        throw;
    }
}

void XCVOffscreenCache::Destroy() {
    m_flags = XCTArray<std::uint32_t, 0>();
    m_lowerMarks = XCTArray<std::int32_t, 0>();
    for (XCVOffscreen* const image : {m_image.get(), m_lower.get()})
        if (image)
            image->Destroy();
}

XCVOffscreen* XCVOffscreenCache::SetThisOffscreen(XCVOffscreen* image) {
    XCVOffscreen* const before = m_image.release();
    m_image.reset(image);
    return before;
}

int XCVOffscreenCache::IsFlag(int index, std::uint32_t bits) const {
    return has(m_flags, index) && (m_flags[index] & bits) == bits;
}

int XCVOffscreenCache::IsFlag(int x, int y, std::uint32_t bits) const {
    return m_image && IsFlag(m_image->GetBlockIndex(x, y), bits);
}

void XCVOffscreenCache::SetFlag(int index, std::uint32_t bits, int on) {
    if (!has(m_flags, index))
        return;
    if (on) {
        m_flags[index] |= bits;
        return;
    }
    m_flags[index] &= ~bits;
    if ((bits & cnCached) && m_image)
        m_image->DestroyBlock(index, 0);
}

void XCVOffscreenCache::SetFlag(const XCRect* rect, std::uint32_t bits, int on) {
    if (m_image)
        forEachBlock(*m_image, rect, m_flags.GetSize(), [&](int index) { SetFlag(index, bits, on); });
}

void XCVOffscreenCache::SetFlag(const XCTArray<tagRECT, 0>& rects, std::uint32_t bits, int on) {
    if (m_image)
        forEachBlock(*m_image, rects, [&](int index) { SetFlag(index, bits, on); });
}

void XCVOffscreenCache::SetFlagSimple(int index, std::uint32_t value) {
    if (has(m_flags, index))
        m_flags[index] = value;
}

int XCVOffscreenCache::UpdateLowerCache(XCRect rect, int index, int store) {
    if (!m_image || !m_lower || !has(m_lowerMarks, index))
        return 0;
    if (!store)
        return m_lowerMarks[index] &&
               m_image->Copy(rect.left, rect.top, rect.Width(), rect.Height(), m_lower.get(), rect.left, rect.top, 0);
    const XCRect block = m_image->GetBlockRect(index);
    if (rect != block ||
        !m_lower->Copy(rect.left, rect.top, rect.Width(), rect.Height(), m_image.get(), block.left, block.top, 0))
        return 0;
    return m_lowerMarks[index] = 1;
}

void XCVOffscreenCache::ClearLowerCache(int index) {
    if (has(m_lowerMarks, index))
        m_lowerMarks[index] = 0;
}

void XCVOffscreenCache::AllClearLowerCache() {
    for (std::int32_t& mark : m_lowerMarks)
        mark = 0;
    if (m_lower)
        m_lower->DestroyAllBlock();
}

int XCVOffscreenCache::IsLowerCache(int index) const { return has(m_lowerMarks, index) ? m_lowerMarks[index] : 0; }

void XCVOffscreenCache::RenderBackground(const XCRect& rect, std::uint32_t colour1, std::uint32_t colour2,
                                         int allBlocks) {
    if (m_image)
        m_image->RenderBackground(rect, colour1, colour2, allBlocks, cnCheckerCell);
}

void XCVOffscreenCache::RenderBackgroundFill(const XCRect& rect, std::uint32_t colour1, std::uint32_t colour2,
                                             int allBlocks) {
    if (m_image)
        m_image->RenderBackgroundFill(rect, colour1, colour2, allBlocks, cnCheckerCell);
}

// ---- Backup

XCVOffscreenBackup::XCVOffscreenBackup() = default;
XCVOffscreenBackup::~XCVOffscreenBackup() = default;

XCVOffscreenBackup* XCVOffscreen::CreateOffscreenBackup(int depth) {
    auto backup = orNoMemory([] { return std::make_unique<XCVOffscreenBackup>(); });
    backup->m_image.reset(CreateOffscreen(depth));
    return backup->m_image ? backup.release() : nullptr;
}

void XCVOffscreen::DeleteOffscreenBackup(XCVOffscreenBackup* backup) { delete backup; }

void XCVOffscreenBackup::Create(XCVirtualMemory* vm, int width, int height, double resolution) {
    m_image->Create(vm, width, height, resolution);
    sizeTo(m_states, *m_image);
}

void XCVOffscreenBackup::Destroy() {
    m_states = XCTArray<BACKUP_STATE, 0>();
    if (m_image)
        m_image->Destroy();
}

BACKUP_STATE XCVOffscreenBackup::GetState(int x, int y) const {
    const int index = m_image ? m_image->GetBlockIndex(x, y) : -1;
    return has(m_states, index) ? m_states[index] : BACKUP_NONE;
}

void XCVOffscreenBackup::setState(int index, BACKUP_STATE state) {
    if (!has(m_states, index))
        return;
    m_states[index] = state;
    if (state == BACKUP_NONE)
        m_image->DestroyBlock(index, 0);
}

void XCVOffscreenBackup::SetState(const XCTArray<tagRECT, 0>& rects, BACKUP_STATE state) {
    if (m_image)
        forEachBlock(*m_image, rects, [&](int index) { setState(index, state); });
}

void XCVOffscreenBackup::SetState(const XCRect* rect, BACKUP_STATE state) {
    if (m_image)
        forEachBlock(*m_image, rect, m_states.GetSize(), [&](int index) { setState(index, state); });
}
