# Headers, the shared library, the CMake package and the pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS ovwCmn EXPORT ovwCmnTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ovwcmn DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(TARGET ovwpaint)
  install(TARGETS ovwpaint RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  set_target_properties(ovwpaint PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
endif()

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/ovwCmn)
install(EXPORT ovwCmnTargets NAMESPACE ovwCmn:: DESTINATION ${package_folder})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/ovwCmnConfig.cmake.in ${PROJECT_BINARY_DIR}/ovwCmnConfig.cmake
                              INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ovwCmnConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ovwCmnConfig.cmake ${PROJECT_BINARY_DIR}/ovwCmnConfigVersion.cmake
        DESTINATION ${package_folder})

file(RELATIVE_PATH pc_to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(${PROJECT_SOURCE_DIR}/cmake/ovwcmn.pc.in ${PROJECT_BINARY_DIR}/ovwcmn.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ovwcmn.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
