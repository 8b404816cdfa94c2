#include "mixing/instructionset.h"

#include "mixing/kerneltable.h"

#include <atomic>

namespace ovw::mixing {
namespace {

// Null until the first use, so that drawing works in other sources' static constructors too.
constinit std::atomic<const KernelTable*> s_kernels = nullptr;

bool hasAvx2() {
#if defined(__x86_64__)
    return __builtin_cpu_supports("avx2");
#else
    return false;
#endif
}

const KernelTable* chooseKernels() {
    const KernelTable* best = hasAvx2() ? &avx2Kernels() : &baseKernels();
    const KernelTable* none = nullptr;
    return s_kernels.compare_exchange_strong(none, best) ? best : none;
}

} // namespace

const KernelTable& kernels() {
    const KernelTable* table = s_kernels.load(std::memory_order_relaxed);
    return table ? *table : *chooseKernels();
}

bool forceInstructionSet(InstructionSet set) {
    if (set == InstructionSet::Avx2 && !hasAvx2())
        return false;
    s_kernels = set == InstructionSet::Avx2 ? &avx2Kernels() : &baseKernels();
    return true;
}

InstructionSet instructionSet() { return &kernels() == &avx2Kernels() ? InstructionSet::Avx2 : InstructionSet::Base; }

} // namespace ovw::mixing
