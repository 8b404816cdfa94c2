#include "vimage/rowkernels.h"

#include "mixing/instructionset.h"

namespace ovw::vimage {

const RowKernels& rowKernels() {
    using mixing::InstructionSet;
    switch (mixing::instructionSet()) {
    case InstructionSet::Avx512: return avx512RowKernels();
    case InstructionSet::Avx2: return avx2RowKernels();
    default: return baseRowKernels();
    }
}

} // namespace ovw::vimage
