#include "mixing/fetchclone.h"

#include "mixing/fetchsource.h"
#include "mixing/imageline.h"
#include "ovwcmn/xcvoffscreenlock.h"

#include <cstring>

namespace ovw::mixing {

void fetchClone(std::uint32_t* pixels, int n, XCVOffscreen& image, std::int64_t x, std::int64_t y) {
    const XCVOffscreenEditLock onlyReads(&image);
    walkImageLine(image, x, y, n, [&](int i, int count, const std::uint8_t* row, int column) {
        if (row == nullptr) {
            std::memset(pixels + i, 0, sizeof(*pixels) * count);
        } else if (image.GetDepth() == 32) {
            std::memcpy(pixels + i, row + 4 * column, sizeof(*pixels) * count);
        } else {
            for (int k = 0; k < count; ++k) {
                image.MoveCursor(static_cast<int>(x + i + k), static_cast<int>(y));
                pixels[i + k] = swapRedBlue(image.Get32BitColor());
            }
        }
    });
}

} // namespace ovw::mixing
