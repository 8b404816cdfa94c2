#ifndef OVW_VIMAGE_ROWPROBE_H
#define OVW_VIMAGE_ROWPROBE_H

class XCVOffscreen;

namespace ovw::vimage {

// XCVOffscreen::CheckLinePixel of 1-bit and of 8-bit images.
int probeBits(XCVOffscreen& image, int y, int& x1, int& x2);
int probeDensities(XCVOffscreen& image, int y, int& x1, int& x2);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_ROWPROBE_H
