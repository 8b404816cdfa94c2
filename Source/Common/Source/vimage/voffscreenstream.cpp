// Tiled images as streams, and packed in memory.

#include "foundation/nomemory.h"
#include "ovwcmn/xcarchivemem.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcvirtualmemory.h"
#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"
#include "vimage/imagestream.h"
#include "vimage/operationsource.h"
#include "vimage/readinglock.h"

#include <memory>
#include <utility>
#include <vector>

using namespace ovw::vimage;
using ovw::foundation::orNoMemory;

namespace {

/// Fills an image from a stream: it is locked for editing, its new blocks are not cleared, and afterwards nothing
/// counts as edited.
class Loading {
public:
    explicit Loading(XCVOffscreen& image)
        : m_image(image), m_editLockChecker(image.GetEditLockChecker()), m_enableClear(image.IsEnableClear()),
          m_lock(&image, 1) {
        image.EnableClear(0);
    }
    Loading(const Loading&) = delete;
    Loading& operator=(const Loading&) = delete;
    ~Loading() {
        m_image.EnableClear(m_enableClear);
        m_image.SetEditLockChecker(m_editLockChecker);
        for (int index = m_image.GetBlockCount(nullptr, nullptr) - 1; index >= 0; --index)
            m_image.ResetBlockEdited(index);
    }

private:
    XCVOffscreen& m_image;
    const int m_editLockChecker;
    const int m_enableClear;
    XCVOffscreenAutoLock m_lock;
};

std::unique_ptr<XCVOffscreen> createImage(const StreamHeader& header) {
    std::unique_ptr<XCVOffscreen> image(XCVOffscreen::CreateOffscreen(header.depth));
    image->Create(xcGetVirtualMemory(), header.width, header.height, header.resolution);
    return image;
}

/// The image section of packed pixels, as they stand.
void writePacked(XCArchive& archive, const XCVOffscreen& image, const PackedPixels& packed) {
    archive.BeginSection();
    StreamHeader::of(image, packed.blockCount, packed.channelOrder).write(archive);
    StreamExtent{packed.extent, packed.isCompressed}.write(archive);
    archive.BeginSection();
    archive.Write(packed.data.GetHandle(), packed.data.GetMemSize());
    archive.EndSection();
    archive.EndSection();
}

void writeBlocks(XCArchive& archive, XCVOffscreen& image, bool compress) {
    const ReadingLock lock(&image);
    XCRect extent;
    BlockList blocks;
    if (image.GetExtentBlock(extent))
        image.GetBlockArea(extent, blocks, 0);
    archive.BeginSection();
    StreamHeader::of(image, blocks.GetSize(), nativeChannelOrder(image.GetDepth())).write(archive);
    if (blocks.GetSize() > 0) {
        StreamExtent{extent, compress}.write(archive);
        archive.BeginSection();
        writeRecords(archive, image, blocks, compress);
        archive.EndSection();
    }
    archive.EndSection();
}

} // namespace

// ---- Archives

void XCVOffscreen::Write(XCArchive& archive, XCVOffscreen* image, int compress) {
    if (!image->m_loadImage && image->CanFastWrite()) {
        if (image->m_packed.byteOrder == archive.GetEndianMode())
            return writePacked(archive, *image, image->m_packed);
        image->LoadImageA(1, 0); // numbers of the other byte order cannot stand in this archive
    }
    writeBlocks(archive, *image, compress != 0);
}

XCVOffscreen* XCVOffscreen::Read(XCArchive& archive, IXCAbort* abort) {
    archive.BeginSection();
    const StreamHeader header = StreamHeader::read(archive);
    std::unique_ptr<XCVOffscreen> image = createImage(header);
    if (header.blockCount > 0) {
        const Loading loading(*image);
        readRecords(archive, *image, header, abort);
    }
    archive.EndSection();
    return image.release();
}

XCVOffscreen* XCVOffscreen::ReadHeader(XCArchive& archive) {
    archive.BeginSection();
    const StreamHeader header = StreamHeader::read(archive);
    std::unique_ptr<XCVOffscreen> image = createImage(header);
    if (header.blockCount > 0)
        image->adopt(readPackedPixels(archive, *image, header));
    archive.EndSection();
    return image.release();
}

int XCVOffscreen::ReadHeader(int* width, int* height, int* depth, double* resolution, XCArchive& archive) {
    archive.BeginSection();
    const StreamHeader header = StreamHeader::read(archive);
    archive.EndSection();
    const auto give = [](auto* to, auto value) {
        if (to)
            *to = value;
    };
    give(width, header.width);
    give(height, header.height);
    give(depth, header.depth);
    give(resolution, header.resolution);
    return 1;
}

int XCVOffscreen::ReadHeaderSelf(XCArchive& archive) {
    archive.BeginSection();
    const StreamHeader header = StreamHeader::read(archive);
    const bool fits = header.fits(*this);
    PackedPixels packed;
    if (fits && header.blockCount > 0)
        packed = readPackedPixels(archive, *this, header);
    archive.EndSection();
    if (!fits)
        return 0;
    DestroyAllBlock();
    adopt(std::move(packed));
    return 1;
}

// ---- Packing and expanding in memory

void XCVOffscreen::adopt(PackedPixels packed) {
    m_packed = std::move(packed);
    m_loadImage = m_packed.blockCount == 0;
}

bool XCVOffscreen::hasUsablePacked() const {
    const bool hasByteOrder = m_packed.byteOrder == static_cast<int>(XCArchive::cnBigEndian) ||
                              m_packed.byteOrder == static_cast<int>(XCArchive::cnLittleEndian);
    return m_packed.data.IsValid() && m_packed.data.GetMemSize() > 0 && m_packed.width == m_width &&
           m_packed.height == m_height && !m_packed.extent.IsRectEmpty() && m_packed.blockCount > 0 && hasByteOrder;
}

int XCVOffscreen::CanFastWrite() const { return !m_loadImage && hasUsablePacked(); }

void XCVOffscreen::expand(const PackedPixels& packed) {
    const Loading loading(*this);
    expandRecords(packed, *this, [](int) { return true; });
}

void XCVOffscreen::LoadImageA(int load, int dropPacked) {
    if (!load) {
        ClearDelayData();
        m_loadImage = 1;
        return;
    }
    if (!CanFastWrite())
        return;
    DestroyAllBlock();
    PackedPixels packed = std::exchange(m_packed, PackedPixels()); // out of the way: the lock below drops stale ones
    m_loadImage = 1;
    try {
        expand(packed);
    } catch (...) {
        DestroyAllBlock();
        adopt(std::move(packed));
        throw;
    }
    if (!dropPacked)
        m_packed = std::move(packed);
}

void XCVOffscreen::LoadImageBlock(const XCTArray<tagRECT, 0>& rects, XCVOffscreen* target) const {
    if (!CanFastWrite() || !target || target->m_depth != m_depth || target->m_width != m_width ||
        target->m_height != m_height)
        return;
    const auto blockCount = static_cast<std::size_t>(m_blocks.GetSize());
    std::vector<bool> isWanted = orNoMemory([blockCount] { return std::vector<bool>(blockCount); });
    for (const tagRECT& rect : rects)
        if (const int index = GetBlockIndex(rect.left, rect.top); index >= 0)
            isWanted[static_cast<std::size_t>(index)] = true;
    const Loading loading(*target);
    expandRecords(m_packed, *target, [&](int index) { return isWanted[static_cast<std::size_t>(index)]; });
}

void XCVOffscreen::Write(XCVOffscreen* image, int compress) {
    if (!image->m_loadImage || image->m_lockCount > 0 || image->m_editMode)
        return;
    PackedPixels packed;
    if (XCRect extent; image->hasUsablePacked() && image->GetExtentBlock(extent) && extent == image->m_packed.extent)
        packed = std::exchange(image->m_packed, PackedPixels());
    else {
        const bool isBigEndian = image->m_packed.byteOrder != static_cast<int>(XCArchive::cnLittleEndian);
        const std::uint32_t order = isBigEndian ? XCArchive::cnBigEndian : XCArchive::cnLittleEndian;
        XCArchiveMem memory(XCArchive::cnSaving | order, 0);
        Write(memory, image, compress);
        memory.SetMode(static_cast<int>(XCArchive::cnLoading | order));
        memory.BeginSection();
        if (const StreamHeader header = StreamHeader::read(memory); header.blockCount > 0)
            packed = readPackedPixels(memory, *image, header);
    }
    if (packed.blockCount == 0)
        return;
    image->DestroyAllBlock();
    image->adopt(std::move(packed));
}

// ---- Reading a part of a packed image

XCVOffscreenLoadLock::~XCVOffscreenLoadLock() { Unlock(); }

XCVOffscreen* XCVOffscreenLoadLock::Lock(XCVOffscreen* image, XCRect rect) {
    Unlock();
    BlockList blocks;
    if (image->IsLoadImage() || image->GetBlockArea(rect, blocks, 0) == 0)
        return image;
    std::unique_ptr<XCVOffscreen> part(image->CreateSameSizeOffscr());
    copySettings(*part, *image);
    image->LoadImageBlock(blocks, part.get());
    return m_part = part.release();
}

void XCVOffscreenLoadLock::Unlock() {
    XCVOffscreen::DeleteOffscreen(m_part);
    m_part = nullptr;
}
