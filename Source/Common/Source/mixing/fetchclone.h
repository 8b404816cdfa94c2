#ifndef OVW_MIXING_FETCHCLONE_H
#define OVW_MIXING_FETCHCLONE_H

#include <cstdint>

class XCVOffscreen;

namespace ovw::mixing {

/// Reads n pixels of row y from column x on as 32-bit pixels in stored order; 0 where there are none. Moves the
/// image's cursor.
void fetchClone(std::uint32_t* pixels, int n, XCVOffscreen& image, std::int64_t x, std::int64_t y);

} // namespace ovw::mixing

#endif // OVW_MIXING_FETCHCLONE_H
