#include "ovwcmn/xcvoffscreenvariants.h"

#include "vimage/depthvariantrows.h"

namespace ovw::vimage {

template class DepthVariant<Bit1>;
template class DepthVariant<Bit2>;
template class DepthVariant<Density8>;
template class DepthVariant<CoverageGrey16>;
template class DepthVariant<Rgb24>;
template class DepthVariant<Rgba32>;

} // namespace ovw::vimage

using namespace ovw::vimage;

XCVOffscreen1Bit::XCVOffscreen1Bit() { SetIndexColor(1, cnOpaqueBlack); }
XCVOffscreen1Bit::~XCVOffscreen1Bit() = default;

XCVOffscreen2Bit::XCVOffscreen2Bit() {
    SetIndexColor(cnWhite2, cnOpaqueWhite);
    SetIndexColor(cnBlack2, cnOpaqueBlack);
}
XCVOffscreen2Bit::~XCVOffscreen2Bit() = default;

XCVOffscreen8Bit::XCVOffscreen8Bit() { SetIndexColor(1, cnOpaqueBlack); }
XCVOffscreen8Bit::~XCVOffscreen8Bit() = default;

XCVOffscreen16Bit::XCVOffscreen16Bit() = default;
XCVOffscreen16Bit::~XCVOffscreen16Bit() = default;

XCVOffscreen24Bit::XCVOffscreen24Bit() = default;
XCVOffscreen24Bit::~XCVOffscreen24Bit() = default;

XCVOffscreen32Bit::XCVOffscreen32Bit() = default;
XCVOffscreen32Bit::~XCVOffscreen32Bit() = default;
