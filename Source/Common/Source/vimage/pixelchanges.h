#ifndef OVW_VIMAGE_PIXELCHANGES_H
#define OVW_VIMAGE_PIXELCHANGES_H

#include <cstdint>

class XCVOffscreen;

namespace ovw::vimage {

// Edits of every pixel of the existing blocks. They lock the image themselves.

void clearAlpha(XCVOffscreen& image, std::uint32_t colour);
void replaceColour(XCVOffscreen& image, std::uint32_t newColour, std::uint32_t oldColour);
void reverseDensities(XCVOffscreen& image);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_PIXELCHANGES_H
