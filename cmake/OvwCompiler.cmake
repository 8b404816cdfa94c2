# Flags that every target of the project is compiled with.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")

find_package(Threads REQUIRED)

add_library(ovw_flags INTERFACE)
target_compile_options(ovw_flags INTERFACE -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
                                           -ffp-contract=off)
if(OVWCMN_WERROR)
  target_compile_options(ovw_flags INTERFACE -Werror)
endif()
if(OVWCMN_SANITIZE)
  target_compile_options(ovw_flags INTERFACE -fsanitize=${OVWCMN_SANITIZE} -fno-sanitize-recover=all
                                             -fno-omit-frame-pointer -g1)
  target_link_options(ovw_flags INTERFACE -fsanitize=${OVWCMN_SANITIZE})
endif()
if(OVWCMN_FUZZ)
  target_compile_options(ovw_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()
target_link_libraries(ovw_flags INTERFACE Threads::Threads)
