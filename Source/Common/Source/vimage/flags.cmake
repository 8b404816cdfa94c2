# Loops over rows of pixels that must vectorise. The resampling kernels are compiled once an instruction set, with the
# same results: without contraction a multiplication and an addition round alike in all of them.
set(ovw_vimage ${CMAKE_CURRENT_LIST_DIR})
set(ovw_row_flags -O3 -ffp-contract=off -fno-math-errno -fno-trapping-math)
set_source_files_properties(${ovw_vimage}/resamplekernels_base.cpp ${ovw_vimage}/pixelrows.cpp
                            ${ovw_vimage}/boxaverage.cpp
                            ${ovw_vimage}/luminancerow.cpp ${ovw_vimage}/greyscale.cpp ${ovw_vimage}/monochrome.cpp
                            PROPERTIES COMPILE_OPTIONS "${ovw_row_flags}")
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64|amd64")
  set_source_files_properties(${ovw_vimage}/resamplekernels_avx2.cpp PROPERTIES
                              COMPILE_OPTIONS "${ovw_row_flags};-mavx2;-mno-fma")
  set_source_files_properties(${ovw_vimage}/resamplekernels_avx512.cpp PROPERTIES
                              COMPILE_OPTIONS "${ovw_row_flags};-mavx512f;-mavx512bw;-mavx512dq;-mavx512vl;-mprefer-vector-width=512")
endif()
