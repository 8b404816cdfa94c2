// The kernels for processors with AVX-512, compiled with its flags where the compiler knows them. Nothing here may be
// shared with other sources: everything but the table's function has internal linkage.

#define OVW_KERNEL_TABLE avx512Kernels
#include "mixing/kernels.inl"
