#include "offscreen/pixelrows.h"
#include "ovwcmn/xcoffscreen.h"
#include "ovwcmn/xcsimpleimage.h"
#include "ovwcmn/xcvirtualmemory.h"
#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"
#include "vimage/blockparts.h"
#include "vimage/withformat.h"

#include <cstring>
#include <memory>
#include <type_traits>

using namespace ovw::offscreen;
namespace vimage = ovw::vimage;

namespace {

// Pixels of tiled images and of the classic depths that take them: the channels change their order, transparency and
// grey turn into 32 bits.
constexpr ArgbPixel toClassic(vimage::BgraPixel p) { return {p.alpha, p.red, p.green, p.blue}; }
constexpr RgbPixel toClassic(vimage::BgrPixel p) { return {p.red, p.green, p.blue}; }
constexpr ArgbPixel toClassic(vimage::GreyPixel p) { return {p.coverage, p.grey, p.grey, p.grey}; }
constexpr vimage::BgraPixel toTiled(ArgbPixel p) { return {p.blue, p.green, p.red, p.alpha}; }
constexpr vimage::BgrPixel toTiled(RgbPixel p) { return {p.blue, p.green, p.red}; }
constexpr std::uint8_t toTiled(std::uint8_t v) { return v; }

/// The 2-bit values, by number; 1 counts as transparent.
constexpr std::uint32_t cn2BitColours[4] = {cnWhite, cnWhite, cnOpaqueWhite, cnOpaqueBlack};

template <class Format, class Tiled>
typename Format::Value classicOf(typename Tiled::Value v) {
    if constexpr (Tiled::cnBits == vimage::Bit2::cnBits)
        return Argb32::write32(cn2BitColours[v & 3]);
    else if constexpr (std::is_same_v<typename Tiled::Value, std::uint8_t>)
        return v;
    else
        return toClassic(v);
}

constexpr int classicDepth(int depth) {
    return depth == vimage::Bit2::cnBits || depth == vimage::CoverageGrey16::cnBits ? Argb32::cnBits : depth;
}

/// What a missing block of a tiled image stands for.
template <class Format>
constexpr typename Format::Value blankPixel() {
    if constexpr (Format::cnBits == Argb32::cnBits)
        return Argb32::write32(cnWhite);
    else
        return Format::write24(cnWhite);
}

template <class Format>
bool isRowBlank(const std::uint8_t* row, int x, int count) {
    for (int i = 0; i < count; ++i)
        if (loadPixel<Format>(row, x + i) != blankPixel<Format>())
            return false;
    return true;
}

/// Whether pixels lie in memory alike.
template <class Format, class Tiled>
inline constexpr bool cnIsAlike =
    Format::cnBits == Tiled::cnBits&& std::is_same_v<typename Format::Value, typename Tiled::Value>;

/// Pixels of a row of a tiled image's block to a row of a classic image.
template <class Format, class Tiled>
void takeRow(std::uint8_t* to, int x, const std::uint8_t* from, int fromX, int count) {
    if constexpr (cnIsAlike<Format, Tiled>)
        return Format::copyRow(to, x, from, fromX, count);
    for (int i = 0; i < count; ++i)
        storePixel<Format>(to, x + i, classicOf<Format, Tiled>(Tiled::pixelAt(from, fromX + i)));
}

/// The other way, for the depths that both have.
template <class Format, class Tiled>
void giveRow(std::uint8_t* to, int toX, const std::uint8_t* from, int x, int count) {
    if constexpr (cnIsAlike<Format, Tiled>)
        Format::copyRow(to, toX, from, x, count);
    else if constexpr (Format::cnBits == Tiled::cnBits)
        for (int i = 0; i < count; ++i)
            Tiled::setPixel(to, toX + i, toTiled(loadPixel<Format>(from, x + i)));
}

/// Calls action with the formats of a tiled image and of the classic image that it becomes.
template <class Action>
void withFormats(int tiledDepth, Action action) {
    vimage::withFormat(tiledDepth, [&]<class Tiled>() {
        withFormat(classicDepth(Tiled::cnBits), [&]<class Format>() {
            if constexpr (Format::cnBits == classicDepth(Tiled::cnBits))
                action.template operator()<Tiled, Format>();
        });
    });
}

/// A pixel of a simple image, which keeps a byte for each packed pixel.
template <class Value>
Value plainPixel(const std::uint8_t* address) {
    Value value;
    std::memcpy(&value, address, sizeof value);
    return value;
}

} // namespace

void XCOffscreen::CopyFromOffscreen(XCVOffscreen* image) {
    if (!image)
        return;
    const XCVOffscreenAutoLock readLock(image, 0);
    const XCVOffscreenEditLock noNewBlocks(image);
    Create(image->GetWidth(), image->GetHeight(), classicDepth(image->GetDepth()), cnOpaqueWhite, 0);
    const ImageLock lock(this);
    const PixelView view(*this);
    withFormats(image->GetDepth(), [&]<class Tiled, class Format>() {
        for (int y = 0; y < view.height; ++y)
            Format::fillRow(view.row(y), 0, view.width, blankPixel<Format>());
        vimage::forEachPart(*image, image->GetRect(), [&view](std::uint8_t* base, const XCRect& part) {
            for (int y = part.top; y < part.bottom; ++y)
                takeRow<Format, Tiled>(view.row(y), part.left, vimage::rowOf<Tiled>(base, y),
                                       part.left & vimage::cnBlockMask, part.Width());
        });
    });
}

XCVOffscreen* XCOffscreen::CopyToOffscreen() {
    const ImageLock lock(this);
    if (!lock)
        return nullptr;
    std::unique_ptr<XCVOffscreen> image(XCVOffscreen::CreateOffscreen(m_info.bitCount));
    image->Create(xcGetVirtualMemory(), m_info.width, m_info.height, 0);
    const PixelView view(*this);
    const XCVOffscreenAutoLock writeLock(image.get(), 1);
    withFormats(view.depth, [&]<class Tiled, class Format>() {
        XCBlockGetter blocks(image.get(), image->GetRect(), 1);
        XCRect part;
        while (blocks.GetNextBlock(part)) {
            bool isBlank = true;
            for (int y = part.top; isBlank && y < part.bottom; ++y)
                isBlank = isRowBlank<Format>(view.row(y), part.left, part.Width());
            if (isBlank)
                continue;
            image->MoveCursor(part.left, part.top);
            for (int y = part.top; y < part.bottom; ++y)
                giveRow<Format, Tiled>(vimage::rowOf<Tiled>(image->GetBaseAddress(), y), 0, view.row(y), part.left,
                                       part.Width());
        }
    });
    return image.release();
}

void XCOffscreen::CopyFromSimpleImage(XCSimpleImage* image) {
    if (!image || image->GetOrgBitCount() == 0)
        return;
    const XCAutoLockSimpleImage readLock(image);
    Create(image->GetWidth(), image->GetHeight(), classicDepth(image->GetOrgBitCount()), cnOpaqueWhite, 0);
    const ImageLock lock(this);
    const PixelView view(*this);
    withFormats(image->GetOrgBitCount(), [&]<class Tiled, class Format>() {
        for (int y = 0; y < view.height; ++y)
            for (int x = 0; x < view.width; ++x)
                storePixel<Format>(view.row(y), x,
                                   classicOf<Format, Tiled>(plainPixel<typename Tiled::Value>(image->GetPixel(x, y))));
    });
}

void XCOffscreen::CopyToSimpleImage(XCSimpleImage& image) {
    const ImageLock lock(this);
    const PixelView view(*this);
    image.allocate(view.depth, view.width, view.height);
    if (!lock)
        return;
    const XCAutoLockSimpleImage writeLock(&image);
    withFormat(view.depth, [&]<class Format>() {
        for (int y = 0; y < view.height; ++y)
            for (int x = 0; x < view.width; ++x) {
                const auto pixel = toTiled(loadPixel<Format>(view.row(y), x));
                std::memcpy(image.GetPixel(x, y), &pixel, sizeof pixel);
            }
    });
}
