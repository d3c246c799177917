# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0

# The libraries as others link them, in the tree, as a part of another project and installed:
# seedforest::image, seedforest::graph, seedforest::ift and seedforest::seedforest. Static, each is
# the archive of its folder; shared, all are one library.

set(archives seedforest-image seedforest-graph seedforest-ift seedforest-api)
set_target_properties(seedforest-image PROPERTIES EXPORT_NAME image)
set_target_properties(seedforest-graph PROPERTIES EXPORT_NAME graph)
set_target_properties(seedforest-ift PROPERTIES EXPORT_NAME ift)
set_target_properties(seedforest-api PROPERTIES EXPORT_NAME seedforest OUTPUT_NAME seedforest)

if(BUILD_SHARED_LIBS)
  add_library(seedforest-shared SHARED)
  set_target_properties(seedforest-shared PROPERTIES
    EXPORT_NAME shared
    OUTPUT_NAME seedforest
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    LINKER_LANGUAGE CXX)
  target_link_libraries(seedforest-shared PRIVATE $<BUILD_INTERFACE:seedforest-options>)
  if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    set(hidden ${CMAKE_CURRENT_LIST_DIR}/hidden.map)
    target_link_options(seedforest-shared PRIVATE LINKER:--version-script=${hidden})
    set_target_properties(seedforest-shared PROPERTIES LINK_DEPENDS ${hidden})
  endif()
  set(installed seedforest-shared)
  foreach(archive ${archives})
    target_sources(seedforest-shared PRIVATE $<TARGET_OBJECTS:${archive}>)
    get_target_property(name ${archive} EXPORT_NAME)
    add_library(seedforest-shared-${name} INTERFACE)
    add_library(seedforest::${name} ALIAS seedforest-shared-${name})
    set_target_properties(seedforest-shared-${name} PROPERTIES EXPORT_NAME ${name})
    target_link_libraries(seedforest-shared-${name} INTERFACE seedforest-shared)
    foreach(property INTERFACE_INCLUDE_DIRECTORIES INTERFACE_COMPILE_FEATURES)
      get_target_property(value ${archive} ${property})
      set_target_properties(seedforest-shared-${name} PROPERTIES ${property} "${value}")
    endforeach()
    list(APPEND installed seedforest-shared-${name})
  endforeach()
  set(pkgConfigLibraries "-lseedforest")
else()
  foreach(archive ${archives})
    get_target_property(name ${archive} EXPORT_NAME)
    add_library(seedforest::${name} ALIAS ${archive})
  endforeach()
  set(installed ${archives})
  set(pkgConfigLibraries "-lseedforest -lseedforest-ift -lseedforest-graph -lseedforest-image")
endif()

if(NOT SEEDFOREST_INSTALL)
  return()
endif()

# Public headers are included alike in the tree and installed: "image/image.h",
# "seedforest/seedforest.hpp".
set(headers ${CMAKE_INSTALL_INCLUDEDIR}/seedforest)
install(FILES ${PROJECT_SOURCE_DIR}/base/error.h DESTINATION ${headers}/base)
foreach(folder image graph ift)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/${folder} DESTINATION ${headers}
    FILES_MATCHING PATTERN "*.h" PATTERN detail EXCLUDE)
endforeach()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/api/seedforest DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.hpp")

include(CMakePackageConfigHelpers)
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/seedforest)
install(TARGETS ${installed} EXPORT seedforest)
install(EXPORT seedforest NAMESPACE seedforest:: FILE seedforest-config.cmake DESTINATION ${package})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/seedforest-config-version.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/seedforest-config-version.cmake DESTINATION ${package})

# Finds its prefix from where it stands, so that an installed folder can be moved.
foreach(place PREFIX FULL_INCLUDEDIR)
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_${place}
    BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig OUTPUT_VARIABLE pkgConfig_${place})
endforeach()
configure_file(${CMAKE_CURRENT_LIST_DIR}/seedforest.pc.in ${CMAKE_CURRENT_BINARY_DIR}/seedforest.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/seedforest.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
