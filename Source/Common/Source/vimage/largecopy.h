#ifndef OVW_VIMAGE_LARGECOPY_H
#define OVW_VIMAGE_LARGECOPY_H

#include "ovwcmn/xcvoffscreen.h"
#include "vimage/rowkernels.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ovw::vimage {

/// How one operation writes memory: past the caches when it is more than these hold anyway. Lines then need not be read
/// before they are written.
class LargeCopy {
public:
    /// Of an operation that writes about so many pixels of an image, or all of them.
    LargeCopy(const XCVOffscreen& destination, std::int64_t width, std::int64_t height)
        : LargeCopy(std::clamp<std::int64_t>(width, 0, destination.GetWidth()) *
                    std::clamp<std::int64_t>(height, 0, destination.GetHeight()) / 8 * destination.GetDepth()) {}
    /// Of one that writes about so many bytes.
    explicit LargeCopy(std::int64_t bytes) : m_isStreamed(bytes >= cnCachedBytes) {}
    ~LargeCopy() {
        if (m_isStreamed)
            m_kernels.endStream();
    }
    LargeCopy(const LargeCopy&) = delete;
    LargeCopy& operator=(const LargeCopy&) = delete;

    bool isStreamed() const { return m_isStreamed; }
    void copy(std::uint8_t* to, const std::uint8_t* from, std::size_t bytes) const {
        if (m_isStreamed)
            m_kernels.stream(to, from, bytes);
        else
            std::memcpy(to, from, bytes);
    }

private:
    static constexpr std::int64_t cnCachedBytes = 24 << 20;

    const RowKernels& m_kernels = rowKernels();
    bool m_isStreamed;
};

} // namespace ovw::vimage

#endif // OVW_VIMAGE_LARGECOPY_H
