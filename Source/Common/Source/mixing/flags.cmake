# The kernels of the mixer: loops that must vectorise, compiled once an instruction set with the same results.
# -ffp-contract=off: a fused multiply-add would round differently from one set to the other.
set(ovw_mixing ${CMAKE_CURRENT_LIST_DIR})
set(ovw_kernel_flags -O3 -ffp-contract=off -fno-math-errno -fno-trapping-math)
ovw_source_flags("${ovw_kernel_flags}" ${ovw_mixing}/kernels_base.cpp)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64|amd64")
  ovw_source_flags("${ovw_kernel_flags};-mavx2;-mno-fma" ${ovw_mixing}/kernels_avx2.cpp)
  ovw_source_flags("${ovw_kernel_flags};-mavx512f;-mavx512bw;-mavx512dq;-mavx512vl;-mprefer-vector-width=512"
                   ${ovw_mixing}/kernels_avx512.cpp)
endif()
