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
  set_property(GLOBAL APPEND PROPERTY OVW_FOLDERS ovw_${name})
endfunction()

# ovw_test(FOLDER...): the sources of tests/FOLDER as the program test_FOLDER, linked with the objects of the
# library's folders named (all of them when none is).
function(ovw_test folder)
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/${folder}/*.cpp)
  if(NOT sources)
    return()
  endif()
  set(folders ${ARGN})
  list(TRANSFORM folders PREPEND ovw_)
  if(NOT folders)
    get_property(folders GLOBAL PROPERTY OVW_FOLDERS)
  endif()
  add_executable(test_${folder} ${sources})
  target_link_libraries(test_${folder} PRIVATE ${folders} ovw_dependencies ovw_flags GTest::gtest GTest::gtest_main)
  target_include_directories(test_${folder} PRIVATE ${PROJECT_SOURCE_DIR}/tests ${PROJECT_SOURCE_DIR}/include
                             ${PROJECT_SOURCE_DIR}/Source ${PROJECT_SOURCE_DIR}/Source/Common/Source)
  gtest_discover_tests(test_${folder} TEST_PREFIX ${folder}. DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                       PROPERTIES TIMEOUT 300 LABELS ${folder})
endfunction()
