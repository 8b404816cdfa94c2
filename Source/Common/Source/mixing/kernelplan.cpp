#include "mixing/kernelplan.h"

#include <array>
#include <cstddef>

namespace ovw::mixing {
namespace {

// clang-format off
constexpr std::array<KernelPlan, 13> cnPlans{{
    //                  start             source                2x2    mask                   gauss  texture cache                compositors
    /* Fastest      */ {Start::Byte,      SourceRule::None,     false, MaskRule::None,        false, false,  CacheRule::None,     CompositorSet::Fastest},
    /* FastestBits  */ {Start::Visit,     SourceRule::None,     false, MaskRule::Gate,        false, false,  CacheRule::None,     CompositorSet::Fastest},
    /* Direct       */ {Start::Paint,     SourceRule::None,     false, MaskRule::Scale,       true,  false,  CacheRule::None,     CompositorSet::Direct},
    /* Cache        */ {Start::Cache,     SourceRule::None,     false, MaskRule::ScaleAndCap, true,  true,   CacheRule::Coverage, CompositorSet::Cache},
    /* Water        */ {Start::Water,     SourceRule::None,     false, MaskRule::ScaleAndCap, true,  true,   CacheRule::Water,    CompositorSet::Water},
    /* Blur         */ {Start::Image,     SourceRule::None,     false, MaskRule::ScaleBlur,   true,  false,  CacheRule::None,     CompositorSet::Blur},
    /* Clone        */ {Start::Image,     SourceRule::None,     false, MaskRule::Scale,       true,  false,  CacheRule::None,     CompositorSet::Clone},
    /* DirectCopy   */ {Start::CacheByte, SourceRule::Bytes,    true,  MaskRule::Scale,       false, false,  CacheRule::None,     CompositorSet::Stamp},
    /* GrayCopy     */ {Start::Cache,     SourceRule::Darkness, true,  MaskRule::ScaleAndCap, false, true,   CacheRule::Coverage, CompositorSet::Cache},
    /* GrayCopyBits */ {Start::Cache,     SourceRule::Darkness, false, MaskRule::GateBit,     false, false,  CacheRule::Coverage, CompositorSet::Cache},
    /* WaterCopy    */ {Start::Water,     SourceRule::Darkness, true,  MaskRule::ScaleAndCap, false, true,   CacheRule::Water,    CompositorSet::Water},
    /* ColorCopy24  */ {Start::Cache,     SourceRule::Colors,   true,  MaskRule::ScaleAndCap, false, false,  CacheRule::Color,    CompositorSet::ColorCache},
    /* ColorCopy32  */ {Start::Cache,     SourceRule::Colors,   true,  MaskRule::ScaleAndCap, false, true,   CacheRule::Color,    CompositorSet::ColorCache},
}};
// clang-format on

} // namespace

const KernelPlan& planOf(Kernel kernel) { return cnPlans[static_cast<std::size_t>(kernel)]; }

} // namespace ovw::mixing
