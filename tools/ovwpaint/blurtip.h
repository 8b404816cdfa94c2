#ifndef OVWPAINT_BLURTIP_H
#define OVWPAINT_BLURTIP_H

/// @file
/// A tip that softens what is there.

#include "ovwcmn/xcpattern.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace ovwpaint {

/// Stamps the shape of another tip with the blurred pixels around it, on images of 32 bits. Works through the mixer's
/// blur image, so the shape may be any but an image.
class BlurTip final : public XCPattern {
public:
    /// @param radius pixels, at least 1
    BlurTip(std::unique_ptr<XCPattern> shape, int radius);
    ~BlurTip() override;

    int IsTrueCircle() const override;
    int Draw(XCRect* changed, XCVOffscreen* image, XCFastPixelMixer* mixer, XCPointD position, float size,
             float pressure, int antialias) override;

private:
    void read(XCVOffscreen& image, const XCRect& area);
    void soften(int width, int height);
    void store(const XCRect& source, const XCRect& area);

    std::unique_ptr<XCPattern> m_shape;
    int m_radius;
    // Four planes, alpha and the channels times alpha: kept from stamp to stamp for their storage.
    std::vector<float> m_planes[4];
    std::vector<float> m_line;
    std::vector<std::uint8_t> m_blurred;
};

} // namespace ovwpaint

#endif // OVWPAINT_BLURTIP_H
