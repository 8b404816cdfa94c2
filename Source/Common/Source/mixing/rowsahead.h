#ifndef OVW_MIXING_ROWSAHEAD_H
#define OVW_MIXING_ROWSAHEAD_H

#include "mixing/blockpixels.h"
#include "mixing/rowbatch.h"
#include "ovwcmn/xcgeometry.h"

#include <algorithm>
#include <cstdint>

namespace ovw::mixing {

/// Has the memory of a stamp's next rows fetched while earlier ones are painted: the rows of a block lie a kilobyte
/// apart, where the processor does not look by itself.
class RowsAhead {
public:
    /// Of a part of a block, in coordinates of the block.
    void addImage(const BlockPixels& image, const XCRect& part);
    /// Of the images of a batch, in coordinates of the image.
    void addImages(const BatchImages& images, const XCRect& part);
    /// The part's rows, in the image's coordinates.
    void begin(int top, int bottom);
    /// Row y is painted next.
    void advanceTo(int y) {
        const int end = std::min(y + m_distance, m_end);
        for (; m_next < end; ++m_next)
            fetchRow();
    }

private:
    static constexpr int cnMostImages = 4;
    static constexpr int cnLineBytes = 64; ///< of a cache line

    void fetchRow();

    struct Columns {
        const std::uint8_t* next;
        int rowBytes;
        int lines;
    };
    Columns m_images[cnMostImages];
    int m_count = 0;
    int m_lines = 0; ///< of a row of all images
    int m_distance = 0;
    int m_next = 0;
    int m_end = 0;
};

} // namespace ovw::mixing

#endif // OVW_MIXING_ROWSAHEAD_H
