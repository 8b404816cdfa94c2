// The row kernels for processors with AVX-512.

#define OVW_KERNEL_TABLE avx512RowKernels
#include "vimage/rowkernels.inl"
