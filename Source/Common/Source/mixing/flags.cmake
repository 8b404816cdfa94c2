# The kernels of the mixer: loops that must vectorise, compiled once an instruction set with the same results.
# -ffp-contract=off: a fused multiply-add would round differently from one set to the other.
set(ovw_mixing ${CMAKE_CURRENT_LIST_DIR})
set(ovw_kernel_flags -O3 -ffp-contract=off -fno-math-errno -fno-trapping-math)
set_source_files_properties(${ovw_mixing}/kernels_base.cpp PROPERTIES COMPILE_OPTIONS "${ovw_kernel_flags}")
# Headers precompiled without these flags do not serve them.
set_source_files_properties(${ovw_mixing}/kernels_base.cpp ${ovw_mixing}/kernels_avx2.cpp
                            ${ovw_mixing}/kernels_avx512.cpp PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64|amd64")
  set_source_files_properties(${ovw_mixing}/kernels_avx2.cpp PROPERTIES
                              COMPILE_OPTIONS "${ovw_kernel_flags};-mavx2;-mno-fma")
  set_source_files_properties(${ovw_mixing}/kernels_avx512.cpp PROPERTIES
                              COMPILE_OPTIONS "${ovw_kernel_flags};-mavx512f;-mavx512bw;-mavx512dq;-mavx512vl;-mprefer-vector-width=512")
endif()
