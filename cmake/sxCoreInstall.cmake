# Installs headers, the library, a CMake package (find_package(sxCore)) and
# a pkg-config file.
include(CMakePackageConfigHelpers)

set(SXCORE_INSTALL_TARGETS sxCore)
if(SXCORE_BUILD_STATIC)
  list(APPEND SXCORE_INSTALL_TARGETS sxCoreStatic)
endif()
install(TARGETS ${SXCORE_INSTALL_TARGETS} EXPORT sxCoreTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/sx DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(SXCORE_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/sxCore)
install(EXPORT sxCoreTargets NAMESPACE sxCore:: DESTINATION ${SXCORE_CMAKE_DIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/sxCoreConfig.cmake.in
  ${PROJECT_BINARY_DIR}/sxCoreConfig.cmake INSTALL_DESTINATION ${SXCORE_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/sxCoreConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/sxCoreConfig.cmake ${PROJECT_BINARY_DIR}/sxCoreConfigVersion.cmake
  DESTINATION ${SXCORE_CMAKE_DIR})

file(RELATIVE_PATH SXCORE_PC_TO_PREFIX "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file(${PROJECT_SOURCE_DIR}/cmake/sxcore.pc.in ${PROJECT_BINARY_DIR}/sxcore.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/sxcore.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
