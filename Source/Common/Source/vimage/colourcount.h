#ifndef OVW_VIMAGE_COLOURCOUNT_H
#define OVW_VIMAGE_COLOURCOUNT_H

class XCVOffscreen;

namespace ovw::vimage {

/// How many values Get24BitColor has in the image, a missing block's among them; 257 for more than 256. -1 unless the
/// image has 24 or 32 bits. The caller holds a reading lock.
int countColours(XCVOffscreen& image);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_COLOURCOUNT_H
