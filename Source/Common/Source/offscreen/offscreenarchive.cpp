#include "offscreen/pixelview.h"
#include "ovwcmn/xcarchive.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcoffscreen.h"

#include <cstring>

using namespace ovw::offscreen;
using ovw::foundation::cnCodeFileFormat;

namespace {

constexpr std::uint64_t cnHeadBytes = 3 * sizeof(std::int32_t);

bool isReversible(const XCOffscreen& image) {
    return image.GetBitCount() == Ink1::cnBits || image.GetBitCount() == Density8::cnBits;
}

/// Makes the bits behind the last pixel of each row 0: fills reach into them.
void clearPadding(const PixelView& view) {
    const std::int64_t usedBits = std::int64_t{view.width} * view.depth;
    const auto firstFree = static_cast<std::size_t>(usedBits + 7) / 8;
    for (int y = 0; y < view.height; ++y) {
        std::uint8_t* const row = view.row(y);
        std::memset(row + firstFree, 0, static_cast<std::size_t>(view.rowBytes) - firstFree);
        if (usedBits % 8 != 0)
            row[usedBits / 8] &= static_cast<std::uint8_t>(0xFF << (8 - usedBits % 8));
    }
}

/// Keeps an image's bytes inverted for a scope.
class ReverseScope {
public:
    ReverseScope(XCOffscreen& image, bool reverse) : m_image(reverse ? &image : nullptr) { reverseNow(); }
    ReverseScope(const ReverseScope&) = delete;
    ReverseScope& operator=(const ReverseScope&) = delete;
    ~ReverseScope() { reverseNow(); }

private:
    void reverseNow() {
        if (m_image)
            m_image->Reverse();
    }

    XCOffscreen* m_image;
};

} // namespace

void XCOffscreen::Serialize(XCArchive& archive, int reverse) {
    if (archive.IsLoading())
        Read(archive, reverse);
    else
        Write(archive, reverse);
}

void XCOffscreen::Reverse() {
    if (!m_info.bits || !isReversible(*this))
        return;
    const std::uint64_t bytes = GetBufferSize();
    for (std::uint64_t i = 0; i < bytes; ++i)
        m_info.bits[i] = static_cast<std::uint8_t>(~m_info.bits[i]);
}

void XCOffscreen::Write(XCArchive& archive, int reverse) {
    Lock();
    struct Unlocker {
        XCOffscreen& image;
        ~Unlocker() { image.Unlock(); }
    } const unlocker{*this};
    clearPadding(PixelView(*this));
    archive.BeginSection();
    archive << m_info.width << m_info.height << m_info.bitCount;
    {
        const ReverseScope scope(*this, reverse != 0);
        archive.Write(m_info.bits, GetBufferSize());
    }
    archive.EndSection();
}

/// Sizes come from a file: they are believed only as far as the section holds the pixels.
void XCOffscreen::Read(XCArchive& archive, int reverse) {
    Destroy();
    archive.BeginSection();
    archive.RequireRemaining(cnHeadBytes);
    std::int32_t width, height, bitCount;
    archive >> width >> height >> bitCount;
    const bool isKnown = withFormat(bitCount, []<class Format>() { return true; });
    if (!isKnown || width <= 0 || height <= 0)
        xcThrowError(cnCodeFileFormat);
    const std::int64_t rowBytes = (std::int64_t{width} * bitCount + 31) / 32 * 4;
    if (rowBytes > archive.GetRemainingSize() / height)
        xcThrowError(cnCodeFileFormat);
    try {
        Create(width, height, bitCount, cnOpaqueWhite, 0);
        const ImageLock lock(this);
        archive.Read(m_info.bits, GetBufferSize());
        if (reverse)
            Reverse();
        archive.EndSection();
    } catch (...) {
        Destroy();
        throw;
    }
}
