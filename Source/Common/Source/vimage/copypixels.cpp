#include "vimage/copypixels.h"

#include "ovwcmn/xcvoffscreen.h"
#include "vimage/blockparts.h"
#include "vimage/largecopy.h"
#include "vimage/pixelrows.h"
#include "vimage/withformat.h"

#include <array>

namespace ovw::vimage {

namespace {

constexpr int cnCountEdit = 1;

/// Whether a part of a block holds all of the block's pixels that lie in the image.
bool coversBlock(const XCVOffscreen& image, const XCRect& part) {
    XCRect block = image.GetBlockRect(image.GetBlockIndex(part.left, part.top));
    block.IntersectRect(image.GetRect());
    return block == part;
}

/// The block that will take the pixels of part.
std::uint8_t* enterForCopy(const PlacedImage& to, const XCRect& part) {
    const bool isWhole = part.Width() == cnBlockSize && part.Height() == cnBlockSize;
    return isWhole ? to.enterToOverwrite(part) : to.enter(part);
}

template <class Format>
void copyPart(std::uint8_t* to, const XCRect& part, const std::uint8_t* from, int fromX, int fromY,
              const LargeCopy& copy) {
    const int x = part.left & cnBlockMask;
    if (part.Width() == cnBlockSize)
        return copy.copy(to + (part.top & cnBlockMask) * cnRowBytes<Format>,
                         from + (fromY & cnBlockMask) * cnRowBytes<Format>,
                         static_cast<std::size_t>(part.Height()) * cnRowBytes<Format>); // rows lie without gaps
    const std::uint8_t* source = from + (fromY & cnBlockMask) * cnRowBytes<Format>;
    for (int y = part.top; y < part.bottom; ++y, source += cnRowBytes<Format>)
        Format::copyRow(rowOf<Format>(to, y), x, source, fromX & cnBlockMask, part.Width());
}

template <class Format>
void clearPart(const PlacedImage& image, const XCRect& part) {
    std::uint8_t clearByte = 0;
    std::uint32_t clearColour = 0;
    image.image().GetClearColor(&clearByte);
    image.image().GetClearColor(&clearColour);
    std::uint8_t* const base = image.enter(part);
    for (int y = part.top; y < part.bottom; ++y)
        Format::clearRow(rowOf<Format>(base, y), part.left & cnBlockMask, part.Width(), clearByte, clearColour);
}

template <class Format>
void erasePart(const PlacedImage& image, const XCRect& part) {
    std::uint32_t clearColour = 0;
    image.image().GetClearColor(&clearColour);
    fillPart<Format>(image.enter(part), part.left, part.top, part.Width(), part.Height(),
                     Format::eraseValue(clearColour, image.image().GetPixelRules()));
}

/// One row of at most a block's width from an image to one of another depth.
class RowConverter {
public:
    RowConverter(const XCVOffscreen& destination, const XCVOffscreen& source, bool behind)
        : m_toRules(destination.GetPixelRules()), m_fromRules(source.GetPixelRules()) {
        const PixelRows& to = pixelRows(destination.GetDepth());
        const PixelRows& from = pixelRows(source.GetDepth());
        const int depth = destination.GetDepth();
        if (depth <= Density8::cnBits) {
            m_readBytes = depth == Bit1::cnBits ? from.read1 : depth == Bit2::cnBits ? from.read2 : from.read8;
            m_writeBytes = behind ? to.unite : to.write;
            return;
        }
        const bool isInk = source.GetDepth() <= Density8::cnBits; // which is white where it is not black, on 24 bits
        m_readColours = depth == Rgb24::cnBits && isInk ? from.read24 : from.read32;
        m_writeColours = behind ? to.writeBehind : to.write32;
    }

    void convert(std::uint8_t* to, int toX, const std::uint8_t* from, int fromX, int count) {
        if (m_readBytes) {
            m_readBytes(from, fromX, count, m_fromRules, m_bytes.data());
            m_writeBytes(to, toX, count, m_toRules, m_bytes.data());
        } else {
            m_readColours(from, fromX, count, m_fromRules, m_colours.data());
            m_writeColours(to, toX, count, m_toRules, m_colours.data(), nullptr);
        }
    }

private:
    const PixelRules& m_toRules;
    const PixelRules& m_fromRules;
    ByteReader m_readBytes = nullptr;
    ByteWriter m_writeBytes = nullptr;
    ColourReader m_readColours = nullptr;
    ColourWriter m_writeColours = nullptr;
    std::array<std::uint8_t, cnBlockSize> m_bytes;
    std::array<BgraPixel, cnBlockSize> m_colours;
};

bool isByteAligned(int depth, std::int64_t dx) { return dx * depth % 8 == 0; }

} // namespace

XCRect CopyPlan::area(const XCVOffscreen& destination, XCVOffscreen& source) const {
    XCRect rect(0, 0, destination.GetWidth(), destination.GetHeight());
    const auto end = [](int start, int length, int edge) {
        return static_cast<int>(std::clamp<std::int64_t>(std::int64_t{start} + length, 0, edge));
    };
    rect = XCRect(std::max(x, 0), std::max(y, 0), end(x, width, rect.right), end(y, height, rect.bottom));
    return rect.IsRectEmpty() ? XCRect() : PlacedImage(source, dx(), dy()).clipped(rect);
}

bool CopyPlan::isWhole(const XCVOffscreen& destination, const XCVOffscreen& source) const {
    return x == 0 && y == 0 && sx == 0 && sy == 0 && width == destination.GetWidth() &&
           height == destination.GetHeight() && width == source.GetWidth() && height == source.GetHeight();
}

int copyPixels(XCVOffscreen& destination, const CopyPlan& plan, XCVOffscreen& source, bool clearMissing) {
    const PlacedImage to(destination);
    const PlacedImage from(source, plan.dx(), plan.dy());
    const bool byBlocks = ((plan.dx() | plan.dy()) & cnBlockMask) == 0;
    const LargeCopy copy(destination, plan.width, plan.height);
    int changed = 0;
    withFormat(destination.GetDepth(), [&]<class Format>() {
        forEachSharedPart(plan.area(destination, source), {to, from}, [&](const XCRect& part) {
            if (const std::uint8_t* const pixels = from.enter(part)) {
                copyPart<Format>(enterForCopy(to, part), part, pixels, from.ownX(part.left), from.ownY(part.top), copy);
                changed = 1;
            } else if (!to.hasBlock(part)) {
                return;
            } else if (byBlocks && coversBlock(destination, part)) {
                changed |= destination.DestroyBlock(to.index(part), cnCountEdit);
            } else if (clearMissing) {
                clearPart<Format>(to, part);
                changed = 1;
            }
        });
    });
    return changed;
}

BlockChanges copyBlocks(XCVOffscreen& destination, XCVOffscreen& source) {
    const int count = source.GetBlockCount(nullptr, nullptr);
    const std::size_t bytes = static_cast<std::size_t>(source.GetBlockRowBytes()) * cnBlockSize;
    const LargeCopy copy(destination, source.GetWidth(), source.GetHeight());
    BlockChanges changes;
    for (int index = 0; index < count; ++index) {
        if (!source.GetBlockExist(index)) {
            changes.released |= destination.DestroyBlock(index, cnCountEdit) != 0;
            continue;
        }
        const PlacedImage from(source), to(destination);
        const XCRect block = source.GetBlockRect(index);
        const std::uint8_t* const pixels = from.enter(block);
        copy.copy(to.enterToOverwrite(block), pixels, bytes);
        changes.copied = true;
    }
    return changes;
}

int convertPixels(XCVOffscreen& destination, const CopyPlan& plan, XCVOffscreen& source, bool behind) {
    const PlacedImage to(destination);
    const PlacedImage from(source, plan.dx(), plan.dy());
    const XCRect area = plan.area(destination, source);
    const bool isRaw =
        !behind && destination.GetDepth() == source.GetDepth() && isByteAligned(destination.GetDepth(), plan.dx());
    const LargeCopy copy(destination, area.Width(), area.Height());
    RowConverter rows(destination, source, behind);
    withFormat(destination.GetDepth(), [&]<class Format>() {
        forEachSharedPart(area, {to, from}, [&](const XCRect& part) {
            const std::uint8_t* const pixels = from.enter(part);
            const int fromX = from.ownX(part.left) & cnBlockMask, fromY = from.ownY(part.top) & cnBlockMask;
            if (!pixels) {
                if (!behind && to.hasBlock(part))
                    erasePart<Format>(to, part);
            } else if (isRaw) {
                copyPart<Format>(enterForCopy(to, part), part, pixels, fromX, fromY, copy);
            } else {
                const std::uint8_t* row = pixels + fromY * source.GetBlockRowBytes();
                std::uint8_t* const base = to.enter(part);
                for (int y = part.top; y < part.bottom; ++y, row += source.GetBlockRowBytes())
                    rows.convert(rowOf<Format>(base, y), part.left & cnBlockMask, row, fromX, part.Width());
            }
        });
    });
    return !area.IsRectEmpty();
}

} // namespace ovw::vimage
