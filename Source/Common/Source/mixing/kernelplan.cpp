#include "mixing/kernelplan.h"

#include <array>
#include <cstddef>

namespace ovw::mixing {
namespace {

// clang-format off
constexpr std::array<KernelPlan, 7> cnPlans{{
    //                 start         mask                   gauss  texture cache  sampled compositors
    /* Fastest     */ {Start::Byte,  MaskRule::None,        false, false,  false, false,  CompositorSet::Fastest},
    /* FastestBits */ {Start::Visit, MaskRule::Gate,        false, false,  false, false,  CompositorSet::Fastest},
    /* Direct      */ {Start::Paint, MaskRule::Scale,       true,  false,  false, false,  CompositorSet::Direct},
    /* Cache       */ {Start::Cache, MaskRule::ScaleAndCap, true,  true,   true,  false,  CompositorSet::Cache},
    /* Water       */ {Start::Water, MaskRule::ScaleAndCap, true,  true,   true,  true,   CompositorSet::Water},
    /* Blur        */ {Start::Image, MaskRule::ScaleBlur,   true,  false,  false, false,  CompositorSet::Blur},
    /* Clone       */ {Start::Image, MaskRule::Scale,       true,  false,  false, false,  CompositorSet::Clone},
}};
// clang-format on

} // namespace

const KernelPlan& planOf(Kernel kernel) { return cnPlans[static_cast<std::size_t>(kernel)]; }

} // namespace ovw::mixing
