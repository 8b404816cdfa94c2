// The kernels for processors with AVX2, compiled with -mavx2 where the compiler knows it. Nothing here may be shared
// with other sources: everything but the table's function has internal linkage.

#define OVW_KERNEL_TABLE avx2Kernels
#include "mixing/kernels.inl"
