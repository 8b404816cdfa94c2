// The resampling kernels for processors with AVX2.

#define OVW_KERNEL_TABLE avx2ResampleKernels
#include "vimage/resamplekernels.inl"
