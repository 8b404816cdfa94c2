# Loops over rows of pixels that must vectorise. The row kernels are compiled once an instruction set, with the
# same results: without contraction a multiplication and an addition round alike in all of them.
set(ovw_vimage ${CMAKE_CURRENT_LIST_DIR})
set(ovw_row_flags -O3 -ffp-contract=off -fno-math-errno -fno-trapping-math)
ovw_source_flags("${ovw_row_flags}" ${ovw_vimage}/rowkernels_base.cpp ${ovw_vimage}/pixelrows.cpp
                 ${ovw_vimage}/boxaverage.cpp ${ovw_vimage}/greyscale.cpp
                 ${ovw_vimage}/monochrome.cpp ${ovw_vimage}/edgelist.cpp ${ovw_vimage}/coveragerow.cpp)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64|amd64")
  ovw_source_flags("${ovw_row_flags};-mavx2;-mno-fma" ${ovw_vimage}/rowkernels_avx2.cpp)
  ovw_source_flags("${ovw_row_flags};-mavx512f;-mavx512bw;-mavx512dq;-mavx512vl;-mprefer-vector-width=512"
                   ${ovw_vimage}/rowkernels_avx512.cpp)
endif()
