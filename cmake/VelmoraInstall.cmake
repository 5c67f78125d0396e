# Headers by subsystem, the umbrella header, the library, the CMake package
# and the pkg-config file. Headers ending in _p.h are private to the build.
include(CMakePackageConfigHelpers)

foreach(dir foundation measures refsys projections vertical transforms datasource dialogs)
  install(DIRECTORY ${CMAKE_SOURCE_DIR}/${dir}
          DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/velmora
          FILES_MATCHING PATTERN "*.h" PATTERN "*_p.h" EXCLUDE)
endforeach()
install(FILES ${CMAKE_SOURCE_DIR}/velmora.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/velmora)

set(_targets velmora)
if(TARGET velmora-dialogs)
  list(APPEND _targets velmora-dialogs)
endif()
install(TARGETS ${_targets} EXPORT VelmoraTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(VELMORA_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Velmora)
install(EXPORT VelmoraTargets NAMESPACE Velmora:: DESTINATION ${VELMORA_CMAKE_DIR})
configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/VelmoraConfig.cmake.in
  ${CMAKE_BINARY_DIR}/VelmoraConfig.cmake INSTALL_DESTINATION ${VELMORA_CMAKE_DIR})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/VelmoraConfigVersion.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/VelmoraConfig.cmake ${CMAKE_BINARY_DIR}/VelmoraConfigVersion.cmake
        DESTINATION ${VELMORA_CMAKE_DIR})

# The .pc file finds its prefix from where it lies, so an install moved with
# --prefix stays usable.
file(RELATIVE_PATH VELMORA_PC_UP /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" VELMORA_PC_UP "${VELMORA_PC_UP}")
configure_file(${CMAKE_SOURCE_DIR}/cmake/velmora.pc.in ${CMAKE_BINARY_DIR}/velmora.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/velmora.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
