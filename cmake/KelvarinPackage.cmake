# SPDX-License-Identifier: MIT
# Debian packages from the install components: `cpack -G DEB` in a build
# directory configured with -DCMAKE_INSTALL_PREFIX=/usr (Debian's library
# folder). Dependencies on system libraries come from dpkg-shlibdeps.
set(CPACK_PACKAGE_NAME kelvarin)
set(CPACK_PACKAGE_VENDOR "The Kelvarin developers")
set(CPACK_PACKAGE_CONTACT "The Kelvarin developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Desktop form controls for Linux")
set(CPACK_RESOURCE_FILE_LICENSE ${KELVARIN_ROOT}/LICENSE)
set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime dev tools)
if(TARGET kelvarin_designer)
  list(APPEND CPACK_COMPONENTS_ALL designer)
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libkelvarin${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
  "Kelvarin form controls, shared libraries\n The date field, picture button and gradient progress bar: a toolkit-free\n core library and Qt 6 widgets on top of it.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_GENERATE_SHLIBS ON)

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libkelvarin-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEV_DEPENDS runtime)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "qt6-base-dev")
set(CPACK_COMPONENT_DEV_DESCRIPTION
  "Kelvarin form controls, development files\n Headers, the CMake package (find_package(Kelvarin)) and pkg-config files.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME kelvarin-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION devel)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION
  "Kelvarin form controls, gallery and script host\n kelvarin-gallery shows the controls at work; kelvarin-host drives them\n from a script.")

set(CPACK_DEBIAN_DESIGNER_PACKAGE_NAME kelvarin-designer-plugin)
set(CPACK_DEBIAN_DESIGNER_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_DESIGNER_PACKAGE_ENHANCES qt6-designer)
set(CPACK_COMPONENT_DESIGNER_DESCRIPTION
  "Kelvarin form controls for Qt Designer\n Puts the Kelvarin controls in Qt Designer's widget box.")

include(CPack)
