#include "mixing/rowsahead.h"

namespace ovw::mixing {
namespace {

constexpr int cnLinesInFlight = 64; ///< more than processors fetch at a time

} // namespace

void RowsAhead::addImage(const BlockPixels& image, const XCRect& part) {
    const std::uint8_t* first = image.at(part.left, part.top);
    const auto offset = static_cast<int>(reinterpret_cast<std::uintptr_t>(first) % cnLineBytes);
    const int bytes = (part.right - part.left) * image.pixelBytes;
    Columns& columns = m_images[m_count++];
    columns = {first - offset, image.rowBytes, (offset + bytes + cnLineBytes - 1) / cnLineBytes};
    m_lines += columns.lines;
}

void RowsAhead::addImages(const BatchImages& images, const XCRect& part) {
    for (const BlockPixels& image : {images.dst, images.cache, images.ref, images.cacheColor}) {
        if (image.bits)
            addImage(image, part - tagPOINT{images.left, images.top});
    }
}

void RowsAhead::begin(int top, int bottom) {
    m_distance = std::max(cnLinesInFlight / std::max(m_lines, 1), 1);
    m_next = top;
    m_end = bottom;
}

void RowsAhead::fetchRow() {
    for (int i = 0; i < m_count; ++i) {
        Columns& image = m_images[i];
        for (int line = 0; line < image.lines; ++line)
            __builtin_prefetch(image.next + line * cnLineBytes);
        image.next += image.rowBytes;
    }
}

} // namespace ovw::mixing
