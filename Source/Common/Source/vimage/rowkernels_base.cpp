// The row kernels for every x86-64, and for other processors.

#define OVW_KERNEL_TABLE baseRowKernels
#include "vimage/rowkernels.inl"
