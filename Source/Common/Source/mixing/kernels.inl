// The kernels of the mixer as one instruction set compiles them. The file that includes this one defines
// OVW_KERNEL_TABLE, the function that hands out the table, and is compiled with the flags of its instruction set.

#include "mixing/compositor.h"
#include "mixing/kerneltable.h"
#include "mixing/sampling.h"
#include "mixing/stages.h"

namespace ovw::mixing {
namespace {

template <class Mode>
constexpr Compositor direct32 = compositeRow32<Mode, Below::Destination, RowOpacity, OneColor>;
template <class Mode>
constexpr Compositor direct24 = compositeRow24<Mode, Below::Destination, RowOpacity, OneColor>;
template <class Mode>
constexpr Compositor direct8 = compositeRow8<Mode, Below::Destination, RowOpacity>;
template <class Mode>
constexpr Compositor uniform32 = compositeRow32<Mode, Below::Destination, OneOpacity, OneColor>;
template <class Mode>
constexpr Compositor uniform24 = compositeRow24<Mode, Below::Destination, OneOpacity, OneColor>;
template <class Mode>
constexpr Compositor uniform8 = compositeRow8<Mode, Below::Destination, OneOpacity>;
template <class Mode>
constexpr Compositor cache32 = compositeRow32<Mode, Below::Reference, RowOpacity, OneColor>;
template <class Mode>
constexpr Compositor channel32 = cache32<Channelwise<Mode>>;
template <class Mode>
constexpr Compositor cache24 = compositeRow24<Mode, Below::Reference, RowOpacity, OneColor>;
template <class Mode>
constexpr Compositor cache8 = compositeRow8<Mode, Below::Reference, RowOpacity>;
template <class Mode>
constexpr Compositor image32 = compositeRow32<Mode, Below::Destination, RowOpacity, RowColor>;
template <class Mode>
constexpr Compositor image24 = compositeRow24<Mode, Below::Destination, RowOpacity, RowColor>;
template <class Mode>
constexpr Compositor colored32 = compositeRow32<Mode, Below::Reference, RowOpacity, RowColor>;
template <class Mode>
constexpr Compositor coloredChannel32 = colored32<Channelwise<Mode>>;
template <class Mode>
constexpr Compositor colored24 = compositeRow24<Mode, Below::Reference, RowOpacity, RowColor>;

constexpr Compositor bits = compositeRowBits;
constexpr Compositor none = nullptr;

// clang-format off
constexpr KernelTable cnKernels = {
    startRow, startCoverage, scaleStart, circleRow,
    {sampleColumns<ByteTexel>, sampleColumns<RgbTexel>, sampleColumns<RgbaTexel>},
    {{weighBits<1>, weighBits<4>},
     {weighDensities<1, false>, weighDensities<4, false>},
     {weighDensities<1, true>, weighDensities<4, true>},
     {weighColors<1, WeighByDarkness>, weighColors<4, WeighByDarkness>},
     {weighColors<1, WeighInFull>, weighColors<4, WeighInFull>},
     {weighColors<1, WeighByAlpha>, weighColors<4, WeighByAlpha>}},
    {scaleByQuarters, scaleByAlpha, scaleBySum, scaleByFixed, scaleByBytes},
    gateByMask, scaleByMask, scaleByMaskAndCap, scaleByMaskOfBlur, visitCovered, visitBySource, visitByMask,
    gaussOfTable, gaussOfLine, scaleByGauss, scaleByGaussWide,
    {scaleByTexture, subtractTexture, limitByTexture, capOnly},
    {nullptr, accumulate<AddsOver>, accumulate<TakesLarger>, accumulate<Adds>},
    {accumulateStroke<KeepsCache, RowCoverage>, accumulateStroke<AddsOver, RowCoverage>,
     accumulateStroke<TakesLarger, RowCoverage>, accumulateStroke<Adds, RowCoverage>},
    {accumulateStroke<KeepsCache, OneCoverage>, accumulateStroke<AddsOver, OneCoverage>,
     accumulateStroke<TakesLarger, OneCoverage>, accumulateStroke<Adds, OneCoverage>},
    paintedPart, scaleByOpacity, scaleByOpacityWide,
    sumColors, shareOfDab, mixDensityCache, accumulateColorOver, accumulateColorMax, moveColors32, moveColors24,
    // fastest
    {   //                 1, 2  8                                24                              32
        /* Replace     */ {bits, uniform8<DensityReplace8>,       uniform24<ChannelReplace>,      fillRow32},
        /* Normal      */ {bits, uniform8<DensityNormal8>,        uniform24<ChannelNormal8>,      normalRow32},
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
        /* Water         */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* Multiply      */ {bits, cache8<DensityNormal15>,       cache24<ChannelNormal15>,       cache32<Multiply15>},
        /* WaterMultiply */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* Add           */ {bits, cache8<DensitySubtract15>,     cache24<ChannelNormal15>,       channel32<Add15>},
        /* Lighten       */ {bits, cache8<DensityLighten15>,      cache24<ChannelNormal15>,       channel32<Lighten15>},
        /* Darken        */ {bits, cache8<DensityDarken15>,       cache24<ChannelNormal15>,       channel32<Darken15>},
        /* ColorBurn     */ {bits, cache8<DensityBurn15>,         cache24<ChannelNormal15>,       channel32<ColorBurn15>},
        /* ColorDodge    */ {bits, cache8<DensitySubtract15>,     cache24<ChannelNormal15>,       channel32<ColorDodge15>},
        /* Screen        */ {bits, cache8<DensityErase15>,        cache24<ChannelNormal15>,       channel32<Screen15>},
        /* Overlay       */ {bits, cache8<DensityOverlay15>,      cache24<ChannelNormal15>,       channel32<Overlay15>},
        /* Difference    */ {bits, cache8<DensityDifference15>,   cache24<ChannelNormal15>,       channel32<Difference15>},
        /* SoftLight     */ {bits, cache8<DensitySoftLight15>,    cache24<ChannelNormal15>,       channel32<SoftLight15>},
        /* HardLight     */ {bits, cache8<DensityNormal15>,       cache24<ChannelNormal15>,       hardLightRow32},
        /* AddFade       */ {bits, cache8<DensitySubtract15>,     cache24<ChannelNormal15>,       channel32<AddFade15>},
    },
    // cache, where the reference has no memory
    {   //                   1, 2  8                              24                              32
        /* Replace       */ {bits, cache8<DensityNormal15>,       cache24<ChannelNormal15>,       cache32<Normal15>},
        /* Normal        */ {bits, cache8<DensityNormal15>,       cache24<ChannelNormal15>,       cache32<Normal15>},
        /* Erase         */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* DarkenStep    */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* LightenStep   */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* Water         */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* Multiply      */ {bits, cache8<DensityNormal15>,       cache24<ChannelNormal15>,       cache32<Normal15>},
        /* WaterMultiply */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* Add           */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* Lighten       */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* Darken        */ {bits, cache8<DensityDarken15>,       cache24<ChannelNormal15>,       none},
        /* ColorBurn     */ {bits, cache8<DensityBurn15>,         cache24<ChannelNormal15>,       none},
        /* ColorDodge    */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* Screen        */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* Overlay       */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* Difference    */ {bits, cache8<DensityDifference15>,   cache24<ChannelNormal15>,       none},
        /* SoftLight     */ {bits, none,                          cache24<ChannelNormal15>,       none},
        /* HardLight     */ {bits, cache8<DensityNormal15>,       cache24<ChannelNormal15>,       hardLightRow32},
        /* AddFade       */ {bits, none,                          cache24<ChannelNormal15>,       none},
    },
    // stamp
    {   //                   1, 2  8                                  24                              32
        /* Replace       */ {none, direct8<DensityReplace8>,          image24<ChannelNormal8>,        image32<Replace8>},
        /* Normal        */ {none, direct8<DensityNormal8>,           image24<ChannelNormal8>,        image32<Normal8>},
        /* Erase         */ {none, direct8<DensityErase8>,            image24<ChannelNormal8>,        image32<Erase8>},
        /* DarkenStep    */ {none, none,                              image24<ChannelNormal8>,        none},
        /* LightenStep   */ {none, none,                              image24<ChannelNormal8>,        none},
        /* Water         */ {none, none,                              image24<ChannelNormal8>,        none},
        /* Multiply      */ {none, direct8<DensityNormal8>,           image24<ChannelNormal8>,        none},
        /* WaterMultiply */ {none, none,                              image24<ChannelNormal8>,        none},
        /* Add           */ {none, none,                              image24<ChannelNormal8>,        none},
        /* Lighten       */ {none, none,                              image24<ChannelNormal8>,        none},
        /* Darken        */ {none, none,                              image24<ChannelNormal8>,        none},
        /* ColorBurn     */ {none, none,                              image24<ChannelNormal8>,        none},
        /* ColorDodge    */ {none, none,                              image24<ChannelNormal8>,        none},
        /* Screen        */ {none, none,                              image24<ChannelNormal8>,        none},
        /* Overlay       */ {none, none,                              image24<ChannelNormal8>,        none},
        /* Difference    */ {none, none,                              image24<ChannelNormal8>,        none},
        /* SoftLight     */ {none, none,                              image24<ChannelNormal8>,        none},
        /* HardLight     */ {none, none,                              image24<ChannelNormal8>,        none},
        /* AddFade       */ {none, none,                              image24<ChannelNormal8>,        none},
    },
    // colour cache
    {   //                   1, 2  8                                  24                              32
        /* Replace       */ {none, none,                              colored24<ChannelNormal15>,     none},
        /* Normal        */ {none, none,                              colored24<ChannelNormal15>,     colored32<Normal15>},
        /* Erase         */ {none, none,                              colored24<ChannelNormal15>,     colored32<Erase15>},
        /* DarkenStep    */ {none, none,                              colored24<ChannelNormal15>,     coloredChannel32<DarkenStep15>},
        /* LightenStep   */ {none, none,                              colored24<ChannelNormal15>,     coloredChannel32<LightenStep15>},
        /* Water         */ {none, none,                              none,                           none},
        /* Multiply      */ {none, none,                              colored24<ChannelNormal15>,     colored32<Multiply15>},
        /* WaterMultiply */ {none, none,                              none,                           none},
        /* Add           */ {none, none,                              colored24<ChannelNormal15>,     coloredChannel32<Add15>},
        /* Lighten       */ {none, none,                              colored24<ChannelNormal15>,     coloredChannel32<Lighten15>},
        /* Darken        */ {none, none,                              colored24<ChannelNormal15>,     coloredChannel32<Darken15>},
        /* ColorBurn     */ {none, none,                              colored24<ChannelNormal15>,     coloredChannel32<ColorBurn15>},
        /* ColorDodge    */ {none, none,                              colored24<ChannelNormal15>,     coloredChannel32<ColorDodge15>},
        /* Screen        */ {none, none,                              colored24<ChannelNormal15>,     coloredChannel32<Screen15>},
        /* Overlay       */ {none, none,                              colored24<ChannelNormal15>,     coloredChannel32<Overlay15>},
        /* Difference    */ {none, none,                              colored24<ChannelNormal15>,     coloredChannel32<Difference15>},
        /* SoftLight     */ {none, none,                              colored24<ChannelNormal15>,     coloredChannel32<SoftLight15>},
        /* HardLight     */ {none, none,                              colored24<ChannelNormal15>,     colored32<HardLight15<>>},
        /* AddFade       */ {none, none,                              colored24<ChannelNormal15>,     coloredChannel32<AddFade15>},
    },
    // colour cache, where the reference has no memory
    {   //                   1, 2  8                                  24                              32
        /* Replace       */ {none, none,                              colored24<ChannelNormal15>,     colored32<Normal15>},
        /* Normal        */ {none, none,                              colored24<ChannelNormal15>,     colored32<Normal15>},
        /* Erase         */ {none, none,                              colored24<ChannelNormal15>,     none},
        /* DarkenStep    */ {none, none,                              colored24<ChannelNormal15>,     none},
        /* LightenStep   */ {none, none,                              colored24<ChannelNormal15>,     none},
        /* Water         */ {none, none,                              none,                           none},
        /* Multiply      */ {none, none,                              colored24<ChannelNormal15>,     colored32<Normal15>},
        /* WaterMultiply */ {none, none,                              none,                           none},
        /* Add           */ {none, none,                              colored24<ChannelNormal15>,     none},
        /* Lighten       */ {none, none,                              colored24<ChannelNormal15>,     none},
        /* Darken        */ {none, none,                              colored24<ChannelNormal15>,     none},
        /* ColorBurn     */ {none, none,                              colored24<ChannelNormal15>,     none},
        /* ColorDodge    */ {none, none,                              colored24<ChannelNormal15>,     none},
        /* Screen        */ {none, none,                              colored24<ChannelNormal15>,     none},
        /* Overlay       */ {none, none,                              colored24<ChannelNormal15>,     none},
        /* Difference    */ {none, none,                              colored24<ChannelNormal15>,     none},
        /* SoftLight     */ {none, none,                              colored24<ChannelNormal15>,     none},
        /* HardLight     */ {none, none,                              colored24<ChannelNormal15>,     colored32<HardLight15<>>},
        /* AddFade       */ {none, none,                              colored24<ChannelNormal15>,     none},
    },
    // water
    {   //                   1, 2  8                                  24                              32
        /* Replace       */ {none, none,                              none,                           none},
        /* Normal        */ {none, none,                              none,                           none},
        /* Erase         */ {none, none,                              none,                           none},
        /* DarkenStep    */ {none, none,                              none,                           none},
        /* LightenStep   */ {none, none,                              none,                           none},
        /* Water         */ {none, lerpRow8<Below::Reference>,        none,                           colored32<Water15>},
        /* Multiply      */ {none, none,                              none,                           none},
        /* WaterMultiply */ {none, lerpRow8<Below::Reference>,        none,                           colored32<WaterMultiply15>},
    },
    // blur
    {none, none, none, image32<Blur15>},
    // clone
    {none, lerpRow8<Below::Destination>, cloneRow24, image32<Clone15>},
};
// clang-format on

} // namespace

const KernelTable& OVW_KERNEL_TABLE() { return cnKernels; }

} // namespace ovw::mixing
