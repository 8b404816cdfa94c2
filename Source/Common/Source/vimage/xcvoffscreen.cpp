#include "ovwcmn/xcvoffscreen.h"

#include "foundation/nomemory.h"
#include "ovwcmn/xcvoffscreenlock.h"
#include "vimage/blockparts.h"
#include "vimage/withformat.h"

#include <cstring>
#include <memory>

using namespace ovw::vimage;
using ovw::foundation::orNoMemory;

XCVOffscreen::XCVOffscreen() = default;

XCVOffscreen::~XCVOffscreen() { XCVOffscreen::Destroy(); }

void XCVOffscreen::Initialize() {
    m_vm = nullptr;
    m_width = m_height = 0;
    m_resolution = 0;
    m_offset = XCPoint();
    m_rowBytes = 0;
    m_blocksAcross = m_blocksDown = 0;
    m_lockCount = 0;
    m_editMode = 0;
    m_protectRect.SetRectEmpty();
    m_cursor = XCVOffscreenCursor();
    m_cursorArea.SetRectEmpty();
    m_clearByte = 0;
    m_clearColor = m_maskColor = cnTransparentWhite;
    m_enableClear = 1;
    m_transparency = cnOpaque;
    m_loadImage = 1;
    m_packed = PackedPixels();
    m_editLockChecker = 0;
}

// ---- Making images

namespace {

template <class Format>
struct VariantOf;
template <>
struct VariantOf<Bit1> {
    using Type = XCVOffscreen1Bit;
};
template <>
struct VariantOf<Bit2> {
    using Type = XCVOffscreen2Bit;
};
template <>
struct VariantOf<Density8> {
    using Type = XCVOffscreen8Bit;
};
template <>
struct VariantOf<CoverageGrey16> {
    using Type = XCVOffscreen16Bit;
};
template <>
struct VariantOf<Rgb24> {
    using Type = XCVOffscreen24Bit;
};
template <>
struct VariantOf<Rgba32> {
    using Type = XCVOffscreen32Bit;
};

} // namespace

XCVOffscreen* XCVOffscreen::CreateOffscreen(int depth) {
    return withFormat(depth, []<class Format>() -> XCVOffscreen* {
        return orNoMemory([]() -> XCVOffscreen* { return new typename VariantOf<Format>::Type; });
    });
}

void XCVOffscreen::DeleteOffscreen(XCVOffscreen* image) { delete image; }

XCVOffscreen* XCVOffscreen::CreateSameSizeOffscr() const { return CreateSameSizeOffscr(m_resolution); }

XCVOffscreen* XCVOffscreen::CreateSameSizeOffscr(double resolution) const {
    std::unique_ptr<XCVOffscreen> image(CreateOffscreen(m_depth));
    if (image)
        image->Create(m_vm, m_width, m_height, resolution);
    return image.release();
}
