// The kernels of the mixer as one instruction set compiles them. The file that includes this one defines
// OVW_KERNEL_TABLE, the function that hands out the table, and is compiled with the flags of its instruction set.

#include "mixing/compositor.h"
#include "mixing/kerneltable.h"
#include "mixing/stages.h"

namespace ovw::mixing {
namespace {

template <class Mode>
constexpr Compositor direct32 = compositeRow32<Mode, Below::Destination, RowOpacity>;
template <class Mode>
constexpr Compositor direct24 = compositeRow24<Mode, Below::Destination, RowOpacity>;
template <class Mode>
constexpr Compositor direct8 = compositeRow8<Mode, Below::Destination, RowOpacity>;
template <class Mode>
constexpr Compositor uniform32 = compositeRow32<Mode, Below::Destination, OneOpacity>;
template <class Mode>
constexpr Compositor uniform24 = compositeRow24<Mode, Below::Destination, OneOpacity>;
template <class Mode>
constexpr Compositor uniform8 = compositeRow8<Mode, Below::Destination, OneOpacity>;
template <class Mode>
constexpr Compositor cache32 = compositeRow32<Mode, Below::Reference, RowOpacity>;
template <class Mode>
constexpr Compositor channel32 = cache32<Channelwise<Mode>>;
template <class Mode>
constexpr Compositor cache24 = compositeRow24<Mode, Below::Reference, RowOpacity>;
template <class Mode>
constexpr Compositor cache8 = compositeRow8<Mode, Below::Reference, RowOpacity>;

constexpr Compositor bits = compositeRowBits;
constexpr Compositor none = nullptr;

// clang-format off
constexpr KernelTable cnKernels = {
    startRow, startCoverage, scaleStart, skipFull,
    gateByMask, scaleByMask, scaleByMaskAndCap, scaleByMaskOfBlur, visitByMask,
    gaussOfTable, gaussOfLine, scaleByGauss, scaleByGaussWide,
    {scaleByTexture, subtractTexture, limitByTexture, capOnly},
    {nullptr, accumulateOver, accumulateMax, accumulateAdd},
    scaleByOpacity, scaleByOpacityWide,
    // fastest
    {   //                 1, 2  8                                24                              32
        /* Replace     */ {bits, uniform8<DensityReplace8>,       uniform24<ChannelReplace>,      fillRow32},
        /* Normal      */ {bits, uniform8<DensityNormal8>,        uniform24<ChannelNormal8>,      uniform32<Normal8>},
        /* Erase       */ {bits, uniform8<DensityErase8>,         none,                           uniform32<Erase8>},
        /* DarkenStep  */ {bits, uniform8<DensityDarkenStep8>,    uniform24<DarkenStep8>,         uniform32<Channelwise<DarkenStep8>>},
        /* LightenStep */ {bits, uniform8<DensityLightenStep8>,   uniform24<LightenStep8>,        uniform32<Channelwise<LightenStep8>>},
    },
    // fastest, an opacity a pixel
    {   //                 1, 2  8                                24                              32
        /* Replace     */ {bits, direct8<DensityReplace8>,        direct24<ChannelReplace>,       direct32<Replace8>},
        /* Normal      */ {bits, direct8<DensityNormal8>,         direct24<ChannelNormal8>,       direct32<Normal8>},
        /* Erase       */ {bits, direct8<DensityErase8>,          none,                           direct32<Erase8>},
        /* DarkenStep  */ {bits, direct8<DensityDarkenStep8>,     direct24<DarkenStep8>,          direct32<Channelwise<DarkenStep8>>},
        /* LightenStep */ {bits, direct8<DensityLightenStep8>,    direct24<LightenStep8>,         direct32<Channelwise<LightenStep8>>},
    },
    // direct
    {   //                 1, 2  8                                24                              32
        /* Replace     */ {bits, direct8<DensityReplace15>,       direct24<ChannelReplace>,       direct32<Replace15>},
        /* Normal      */ {bits, direct8<DensityNormal15>,        direct24<ChannelNormal15>,      direct32<Normal15>},
        /* Erase       */ {bits, direct8<DensityErase15>,         none,                           direct32<Erase15>},
        /* DarkenStep  */ {bits, direct8<DensityDarkenStep15>,    direct24<DarkenStep15>,         direct32<Channelwise<DarkenStep15>>},
        /* LightenStep */ {bits, direct8<DensityLightenStep15>,   direct24<LightenStep15>,        direct32<Channelwise<LightenStep15>>},
    },
    // cache
    {   //                   1, 2  8                              24                              32
        /* Replace       */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* Normal        */ {bits, cache8<DensityNormal15>,       cache24<ChannelNormal15>,       cache32<Normal15>},
        /* Erase         */ {bits, cache8<DensityErase15>,        cache24<ChannelNormal15>,       cache32<Erase15>},
        /* DarkenStep    */ {bits, cache8<DensityDarkenStep15>,   cache24<ChannelNormal15>,       channel32<DarkenStep15>},
        /* LightenStep   */ {bits, cache8<DensityLightenStep15>,  cache24<ChannelNormal15>,       channel32<LightenStep15>},
        /* Water         */ {none, none,                          none,                           none},
        /* Multiply      */ {bits, cache8<DensityNormal15>,       cache24<ChannelNormal15>,       cache32<Multiply15>},
        /* WaterMultiply */ {none, none,                          none,                           none},
        /* Add           */ {bits, cache8<DensitySubtract15>,     cache24<ChannelNormal15>,       channel32<Add15>},
        /* Lighten       */ {bits, cache8<DensityLighten15>,      cache24<ChannelNormal15>,       channel32<Lighten15>},
        /* Darken        */ {bits, cache8<DensityDarken15>,       cache24<ChannelNormal15>,       channel32<Darken15>},
        /* ColorBurn     */ {bits, cache8<DensityBurn15>,         cache24<ChannelNormal15>,       channel32<ColorBurn15>},
        /* ColorDodge    */ {bits, cache8<DensitySubtract15>,     cache24<ChannelNormal15>,       channel32<ColorDodge15>},
        /* Screen        */ {bits, cache8<DensityErase15>,        cache24<ChannelNormal15>,       channel32<Screen15>},
        /* Overlay       */ {bits, cache8<DensityOverlay15>,      cache24<ChannelNormal15>,       channel32<Overlay15>},
        /* Difference    */ {bits, cache8<DensityDifference15>,   cache24<ChannelNormal15>,       channel32<Difference15>},
        /* SoftLight     */ {bits, cache8<DensitySoftLight15>,    cache24<ChannelNormal15>,       channel32<SoftLight15>},
        /* HardLight     */ {bits, cache8<DensityNormal15>,       cache24<ChannelNormal15>,       cache32<HardLight15>},
        /* AddFade       */ {bits, cache8<DensitySubtract15>,     cache24<ChannelNormal15>,       channel32<AddFade15>},
    },
    // cache, where the reference has no memory
    {   //                   1, 2  8                              24                              32
        /* Replace       */ {bits, cache8<DensityNormal15>,       cache24<ChannelNormal15>,       cache32<Normal15>},
        /* Normal        */ {bits, cache8<DensityNormal15>,       cache24<ChannelNormal15>,       cache32<Normal15>},
        /* Erase         */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* DarkenStep    */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* LightenStep   */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* Water         */ {none, none,                          none,                           none},
        /* Multiply      */ {bits, cache8<DensityNormal15>,       cache24<ChannelNormal15>,       cache32<Normal15>},
        /* WaterMultiply */ {none, none,                          none,                           none},
        /* Add           */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* Lighten       */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* Darken        */ {bits, cache8<DensityDarken15>,       cache24<ChannelNormal15>,       none},
        /* ColorBurn     */ {bits, cache8<DensityBurn15>,         cache24<ChannelNormal15>,       none},
        /* ColorDodge    */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* Screen        */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* Overlay       */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* Difference    */ {bits, cache8<DensityDifference15>,   cache24<ChannelNormal15>,       none},
        /* SoftLight     */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* HardLight     */ {bits, cache8<DensityNormal15>,       cache24<ChannelNormal15>,       cache32<HardLight15>},
        /* AddFade       */ {bits, none,                          cache24<ChannelNormal15>,       none},
    },
};
// clang-format on

} // namespace

const KernelTable& OVW_KERNEL_TABLE() { return cnKernels; }

} // namespace ovw::mixing
