#include "mixing/instructionset.h"

#include "mixing/kerneltable.h"

#include <atomic>

namespace ovw::mixing {
namespace {

constexpr int cnWideSpan = 16; // pixels from which on 512 bits are faster than 256

// Null until the first use, so that drawing works in other sources' static constructors too.
constinit std::atomic<const KernelTable*> s_kernels = nullptr;
constinit std::atomic<const KernelTable*> s_narrowKernels = nullptr;

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

void chooseKernels() {
    const InstructionSet best = bestSet();
    s_narrowKernels = &kernelsOf(best == InstructionSet::Avx512 ? InstructionSet::Avx2 : best);
    s_kernels = &kernelsOf(best);
}

} // namespace

const KernelTable& kernels(int n) {
    const std::atomic<const KernelTable*>& table = n < cnWideSpan ? s_narrowKernels : s_kernels;
    // Threads that meet here for the first time make the same choice.
    if (!table.load(std::memory_order_relaxed))
        chooseKernels();
    return *table.load(std::memory_order_relaxed);
}

bool forceInstructionSet(InstructionSet set) {
    if (!isSupported(set))
        return false;
    s_narrowKernels = &kernelsOf(set);
    s_kernels = &kernelsOf(set);
    return true;
}

InstructionSet instructionSet() {
    const KernelTable* table = &kernels(cnWideSpan);
    for (InstructionSet set : {InstructionSet::Avx512, InstructionSet::Avx2}) {
        if (table == &kernelsOf(set))
            return set;
    }
    return InstructionSet::Base;
}

} // namespace ovw::mixing
