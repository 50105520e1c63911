# SPDX-License-Identifier: MIT
# What `cmake --install` puts under the prefix, in the components the Debian
# packages are made of (cpack -G DEB in the build directory):
#   runtime   the shared libraries and the component library
#   dev       headers, the CMake package, pkg-config files, the linker names
#   tools     kelvarin-gallery, kelvarin-host and its manual page
#   designer  the Qt Designer plugin, in Qt 6's plugin folder
include(CMakePackageConfigHelpers)

set(KELVARIN_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Kelvarin)
set(KELVARIN_TARGETS kelvarin_core)
if(TARGET kelvarin_widgets)
  list(APPEND KELVARIN_TARGETS kelvarin_widgets)
  set(KELVARIN_HAS_WIDGETS ON)
else()
  set(KELVARIN_HAS_WIDGETS OFF)
endif()

install(TARGETS ${KELVARIN_TARGETS} EXPORT KelvarinTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev)
# The component library, loaded by path (dlopen) and recorded by that path in
# the registry: a module of its own, not linked.
install(TARGETS kelvarin_shared
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/kelvarin COMPONENT runtime)

install(DIRECTORY ${KELVARIN_ROOT}/include/kelvarin ${KELVARIN_GENERATED_INCLUDE}/kelvarin
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev FILES_MATCHING PATTERN "*.h")

install(EXPORT KelvarinTargets NAMESPACE Kelvarin:: DESTINATION ${KELVARIN_CMAKE_DIR}
  FILE KelvarinTargets.cmake COMPONENT dev)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/KelvarinConfig.cmake.in
  ${PROJECT_BINARY_DIR}/KelvarinConfig.cmake INSTALL_DESTINATION ${KELVARIN_CMAKE_DIR})
# 0.x: a minor version may change the interface.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KelvarinConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KelvarinConfig.cmake
              ${PROJECT_BINARY_DIR}/KelvarinConfigVersion.cmake
  DESTINATION ${KELVARIN_CMAKE_DIR} COMPONENT dev)

# pkg-config files that find the prefix from where they are, so a staged or
# moved installation works as well as the one configured.
file(RELATIVE_PATH KELVARIN_PC_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
     ${CMAKE_INSTALL_PREFIX})
set(KELVARIN_PC_PREFIX "\${pcfiledir}/${KELVARIN_PC_PREFIX}")
set(KELVARIN_PC_FILES kelvarin-core)
if(KELVARIN_HAS_WIDGETS)
  list(APPEND KELVARIN_PC_FILES kelvarin-widgets)
endif()
foreach(pc ${KELVARIN_PC_FILES})
  configure_file(${CMAKE_CURRENT_LIST_DIR}/${pc}.pc.in ${PROJECT_BINARY_DIR}/${pc}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${pc}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)
endforeach()

if(TARGET kelvarin_designer)
  find_package(Qt6 REQUIRED COMPONENTS Core)
  # Relative to the prefix: with the prefix /usr it is Debian's own folder.
  install(TARGETS kelvarin_designer
    LIBRARY DESTINATION ${QT6_INSTALL_PLUGINS}/designer COMPONENT designer)
endif()

if(KELVARIN_APPS)
  foreach(program kelvarin-gallery kelvarin-host)
    if(TARGET ${program})
      install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
    endif()
  endforeach()
  install(FILES ${KELVARIN_ROOT}/apps/host/kelvarin-host.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
endif()

install(FILES ${KELVARIN_ROOT}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)

include(cmake/KelvarinPackage.cmake)
