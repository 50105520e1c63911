# SPDX-License-Identifier: MIT
# Settings shared by every target of our own code.
#   kelvarin_target(<target>) : warnings (errors with KELVARIN_WERROR),
#                               repository-root includes, sanitizers when
#                               KELVARIN_SANITIZE is on.
set(KELVARIN_ROOT ${CMAKE_CURRENT_LIST_DIR}/..)
# Generated public headers (kelvarin/Version.h).
set(KELVARIN_GENERATED_INCLUDE ${PROJECT_BINARY_DIR}/include)
configure_file(${CMAKE_CURRENT_LIST_DIR}/Version.h.in
               ${KELVARIN_GENERATED_INCLUDE}/kelvarin/Version.h @ONLY)

if(KELVARIN_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

# A fuzzing build instruments all our code for coverage and errors.
if(KELVARIN_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

function(kelvarin_target target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
  if(KELVARIN_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "INTERFACE_LIBRARY")
    return()
  endif()
  target_include_directories(${target} PUBLIC ${KELVARIN_ROOT} ${KELVARIN_ROOT}/include
                                              ${KELVARIN_GENERATED_INCLUDE})
endfunction()

# kelvarin_gtest(<name> SOURCES ... LIBS ...): one GoogleTest executable,
# its cases registered with CTest.
function(kelvarin_gtest name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  kelvarin_target(${name})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60)
endfunction()

# kelvarin_library(<name> <sources>...): a static library of the project,
# recorded so that benchmarks and programs can link every layer. Its objects
# are compiled once, position-independent with hidden symbols, and are also
# the objects of the shared libraries (cmake/KelvarinShared.cmake), which
# export only what is marked KELVARIN_CORE_API or KELVARIN_WIDGETS_API.
function(kelvarin_library name)
  add_library(${name} STATIC ${ARGN})
  kelvarin_target(${name})
  set_target_properties(${name} PROPERTIES CXX_VISIBILITY_PRESET hidden
                                           VISIBILITY_INLINES_HIDDEN ON)
  set_property(GLOBAL APPEND PROPERTY KELVARIN_LIBS ${name})
endfunction()
