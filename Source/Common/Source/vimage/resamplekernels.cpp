#include "vimage/resamplekernels.h"

#include "mixing/instructionset.h"

namespace ovw::vimage {

const ResampleKernels& resampleKernels() {
    using mixing::InstructionSet;
    switch (mixing::instructionSet()) {
    case InstructionSet::Avx512: return avx512ResampleKernels();
    case InstructionSet::Avx2: return avx2ResampleKernels();
    default: return baseResampleKernels();
    }
}

} // namespace ovw::vimage
