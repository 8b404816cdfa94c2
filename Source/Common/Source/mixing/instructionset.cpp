#include "mixing/instructionset.h"

#include "mixing/kerneltable.h"

#include <atomic>

namespace ovw::mixing {
namespace {

// Null until the first use, so that drawing works in other sources' static constructors too.
constinit std::atomic<const KernelTable*> s_kernels = nullptr;

bool isSupported(InstructionSet set) {
    if (set == InstructionSet::Base)
        return true;
#if defined(__x86_64__)
    if (set == InstructionSet::Avx2)
        return __builtin_cpu_supports("avx2");
    // vbmi2 only tells the processors apart that slow down for wide vectors: those came before it.
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
           __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl") &&
           __builtin_cpu_supports("avx512vbmi2");
#else
    return false;
#endif
}

const KernelTable& kernelsOf(InstructionSet set) {
    switch (set) {
    case InstructionSet::Avx512: return avx512Kernels();
    case InstructionSet::Avx2: return avx2Kernels();
    default: return baseKernels();
    }
}

InstructionSet bestSet() {
    for (InstructionSet set : {InstructionSet::Avx512, InstructionSet::Avx2}) {
        if (isSupported(set))
            return set;
    }
    return InstructionSet::Base;
}

const KernelTable* chooseKernels() {
    const KernelTable* best = &kernelsOf(bestSet());
    const KernelTable* chosen = nullptr;
    return s_kernels.compare_exchange_strong(chosen, best) ? best : chosen;
}

} // namespace

const KernelTable& kernels() {
    const KernelTable* table = s_kernels.load(std::memory_order_relaxed);
    return table ? *table : *chooseKernels();
}

bool forceInstructionSet(InstructionSet set) {
    if (!isSupported(set))
        return false;
    s_kernels = &kernelsOf(set);
    return true;
}

InstructionSet instructionSet() {
    for (InstructionSet set : {InstructionSet::Avx512, InstructionSet::Avx2}) {
        if (&kernels() == &kernelsOf(set))
            return set;
    }
    return InstructionSet::Base;
}

} // namespace ovw::mixing
