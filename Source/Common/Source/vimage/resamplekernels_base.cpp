// The resampling kernels for every x86-64, and for other processors.

#define OVW_KERNEL_TABLE baseResampleKernels
#include "vimage/resamplekernels.inl"
