# SPDX-License-Identifier: MIT
# The two shared libraries a distribution ships and an application links:
#   kelvarin_core    (Kelvarin::Core, libkelvarin-core.so.MAJOR): the controls,
#                    the raster class, the hosts' interfaces and dispatch;
#   kelvarin_widgets (Kelvarin::Widgets, libkelvarin-widgets.so.MAJOR): the
#                    Qt 6 widgets, on top of the core.
# Each is linked from the objects of its layers' static libraries, which the
# tests, benchmarks and programs link instead: they reach internals that the
# shared libraries hide.
find_package(nlohmann_json REQUIRED)

function(kelvarin_shared target export_name output_name)
  cmake_parse_arguments(ARG "" "" "LAYERS;SOURCES" ${ARGN})
  set(objects)
  foreach(layer ${ARG_LAYERS})
    list(APPEND objects $<TARGET_OBJECTS:${layer}>)
  endforeach()
  add_library(${target} SHARED ${ARG_SOURCES} ${objects})
  add_library(Kelvarin::${export_name} ALIAS ${target})
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
  if(KELVARIN_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${KELVARIN_ROOT}/include>
    $<BUILD_INTERFACE:${KELVARIN_GENERATED_INCLUDE}>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME ${output_name}
    EXPORT_NAME ${export_name}
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  if(NOT KELVARIN_SANITIZE AND NOT KELVARIN_FUZZ)
    # Every symbol resolved at link time (the sanitizer runtime is not).
    target_link_options(${target} PRIVATE -Wl,-z,defs)
  endif()
endfunction()

kelvarin_shared(kelvarin_core Core kelvarin-core
  SOURCES ${KELVARIN_ROOT}/library/Version.cpp
  LAYERS kelvarin_common kelvarin_gfx kelvarin_host kelvarin_controls kelvarin_pages kelvarin_lib)
target_link_libraries(kelvarin_core PRIVATE nlohmann_json::nlohmann_json ${CMAKE_DL_LIBS})

if(TARGET kelvarin_qt)
  find_package(Qt6 6.2 REQUIRED COMPONENTS Widgets)
  kelvarin_shared(kelvarin_widgets Widgets kelvarin-widgets LAYERS kelvarin_qt)
  target_link_libraries(kelvarin_widgets PUBLIC kelvarin_core Qt6::Widgets)
endif()
