// The resampling kernels for processors with AVX-512.

#define OVW_KERNEL_TABLE avx512ResampleKernels
#include "vimage/resamplekernels.inl"
