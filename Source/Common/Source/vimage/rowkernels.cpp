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

void fillRepeated(std::uint8_t* to, std::size_t bytes, const std::uint8_t* pattern) {
    rowKernels().fillRepeated(to, bytes, pattern);
}

void shiftBits(std::uint8_t* to, const std::uint8_t* from, std::size_t bytes, int shift) {
    rowKernels().shiftBits(to, from, bytes, shift);
}

} // namespace ovw::vimage
