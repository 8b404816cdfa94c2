// The row kernels for processors with AVX2.

#define OVW_KERNEL_TABLE avx2RowKernels
#include "vimage/rowkernels.inl"
