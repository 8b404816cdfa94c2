#ifndef OVWCMN_DETAIL_PACKEDPIXELS_H
#define OVWCMN_DETAIL_PACKEDPIXELS_H

#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xchandle.h"

#include <cstdint>

namespace ovw::vimage {

/// The blocks of a tiled image as its stream holds them: what an image keeps that gave its blocks up.
struct PackedPixels {
    XCHandle data; ///< The records, one a block of the extent.
    int width = 0; ///< Of the image that the records belong to.
    int height = 0;
    XCRect extent;
    int blockCount = 0;
    std::uint8_t isCompressed = 0;
    std::uint8_t channelOrder = 0;
    int byteOrder = 0; ///< XCArchive::cnBigEndian or cnLittleEndian.
};

} // namespace ovw::vimage

#endif // OVWCMN_DETAIL_PACKEDPIXELS_H
