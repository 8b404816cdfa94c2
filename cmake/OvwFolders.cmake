# ovw_precompile(TARGET GROUP HEADER...): the target's sources read the headers precompiled, when the build precompiles.
# Targets of one group have the same flags: the first compiles the headers, the others take its.
function(ovw_precompile target group)
  if(NOT OVWCMN_PRECOMPILE)
    return()
  endif()
  get_property(first GLOBAL PROPERTY OVW_PRECOMPILED_${group})
  if(first)
    target_precompile_headers(${target} REUSE_FROM ${first})
  else()
    set_property(GLOBAL PROPERTY OVW_PRECOMPILED_${group} ${target})
    target_precompile_headers(${target} PRIVATE ${ARGN})
  endif()
  target_compile_options(${target} PRIVATE -fpch-preprocess)
endfunction()
set(OVW_STANDARD_HEADERS <algorithm> <array> <cmath> <cstdint> <cstring> <limits> <memory> <string> <utility> <vector>)

# ovw_folder(NAME DIRECTORY): the sources of one folder of the library as the object library ovw_NAME.
# Its objects go into libovwCmn.so, and into the tests of the folders above it, which may look at internals.
set_property(GLOBAL PROPERTY OVW_FOLDERS "")
function(ovw_folder name directory)
  file(GLOB sources CONFIGURE_DEPENDS ${directory}/*.cpp ${directory}/posix/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_library(ovw_${name} OBJECT ${sources})
  target_include_directories(ovw_${name} PUBLIC ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/Source
                                                ${PROJECT_SOURCE_DIR}/Source/Common/Source)
  target_compile_definitions(ovw_${name} PRIVATE OVWCMN_BUILDING)
  target_link_libraries(ovw_${name} PUBLIC ovw_flags)
  ovw_precompile(ovw_${name} library ${OVW_STANDARD_HEADERS})
  set_property(GLOBAL APPEND PROPERTY OVW_FOLDERS ovw_${name})
endfunction()

# ovw_source_flags(FLAGS SOURCE...): sources that are compiled with further flags (a list in one argument), and without
# the precompiled headers, which do not have these.
function(ovw_source_flags flags)
  set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS "${flags}" SKIP_PRECOMPILE_HEADERS ON)
endfunction()

# ovw_test_program(NAME SOURCE...): the program test_NAME of GoogleTest cases, each a test of ctest with the label NAME.
# Under sanitizers and for coverage, where a process is slow to start or end, the whole program is one; and sources that
# do little themselves are not optimised, which takes the compiler a third of the time. OVW_TESTS_WITH_MODELS have plain
# models to run.
set(OVW_TESTS_WITH_MODELS mixing brush)
function(ovw_test_program name)
  add_executable(test_${name} ${ARGN})
  set(group tests)
  if(OVWCMN_SANITIZE OR OVWCMN_COVERAGE)
    if(name IN_LIST OVW_TESTS_WITH_MODELS)
      set(group models)
      if(OVWCMN_SANITIZE)
        target_compile_options(test_${name} PRIVATE -fno-sanitize=undefined)
      endif()
    else()
      target_compile_options(test_${name} PRIVATE -O0)
    endif()
  endif()
  target_link_libraries(test_${name} PRIVATE ovw_flags GTest::gtest GTest::gtest_main)
  target_include_directories(test_${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  ovw_precompile(test_${name} ${group} ${OVW_STANDARD_HEADERS} <gtest/gtest.h>)
  if(OVWCMN_SANITIZE OR OVWCMN_COVERAGE)
    add_test(NAME ${name} COMMAND test_${name} --gtest_brief=1)
    set_tests_properties(${name} PROPERTIES TIMEOUT 900 LABELS ${name})
  else()
    gtest_discover_tests(test_${name} TEST_PREFIX ${name}. DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                         PROPERTIES TIMEOUT 300 LABELS ${name})
  endif()
endfunction()

# ovw_test_internals(NAME FOLDER...): lets the program test_NAME see and link the objects of the library's folders named,
# all of them when none is.
function(ovw_test_internals name)
  set(folders ${ARGN})
  list(TRANSFORM folders PREPEND ovw_)
  if(NOT folders)
    get_property(folders GLOBAL PROPERTY OVW_FOLDERS)
  endif()
  target_link_libraries(test_${name} PRIVATE ${folders} ovw_dependencies)
  target_include_directories(test_${name} PRIVATE ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/Source
                                                  ${PROJECT_SOURCE_DIR}/Source/Common/Source)
endfunction()

# ovw_test(NAME FOLDER...): the sources of tests/NAME as the program test_NAME, with the library's folders named.
function(ovw_test name)
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/${name}/*.cpp)
  ovw_test_program(${name} ${sources})
  ovw_test_internals(${name} ${ARGN})
endfunction()
