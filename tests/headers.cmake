# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0

# Every public header (base/error.h, and all outside base/ and detail/) compiles alone, as C++17 and as C++20, and includes
# public ones only.
file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}
  ${PROJECT_SOURCE_DIR}/base/error.h ${PROJECT_SOURCE_DIR}/image/*.h ${PROJECT_SOURCE_DIR}/graph/*.h ${PROJECT_SOURCE_DIR}/ift/*.h)
list(FILTER headers EXCLUDE REGEX "/detail/")
set(sources)
foreach(header ${headers})
  file(STRINGS ${PROJECT_SOURCE_DIR}/${header} internal REGEX "#include \"(base/[^e]|.*/detail/)")
  if(internal)
    message(SEND_ERROR "${header} is public, but has ${internal}")
  endif()
  string(REPLACE "/" "-" name ${header})
  file(CONFIGURE OUTPUT headers/${name}.cpp CONTENT "#include \"${header}\"\n")
  list(APPEND sources ${CMAKE_CURRENT_BINARY_DIR}/headers/${name}.cpp)
endforeach()
foreach(standard 17 20)
  add_library(public-headers-${standard} OBJECT ${sources})
  set_target_properties(public-headers-${standard} PROPERTIES CXX_STANDARD ${standard})
  target_include_directories(public-headers-${standard} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(public-headers-${standard} PRIVATE seedforest-options)
endforeach()


# Every public function stands on the page that says where to find it, and a shared library has it.
file(READ ${PROJECT_SOURCE_DIR}/docs/finding.md page)
file(READ ${PROJECT_SOURCE_DIR}/cmake/exported.txt exported)
set(found 0)
foreach(header ${headers})
  file(STRINGS ${PROJECT_SOURCE_DIR}/${header} declarations
    REGEX "^(\\[\\[nodiscard\\]\\] )?(int|void|im[A-Z][a-z]+ |if[A-Z][a-z]+ ) ?\\*?[A-Za-z0-9_]+\\(")
  foreach(declaration ${declarations})
    string(REGEX REPLACE "^.*[ *]([A-Za-z0-9_]+)\\(.*$" "\\1" function ${declaration})
    math(EXPR found "${found} + 1")
    if(NOT page MATCHES "`${function}`")
      message(SEND_ERROR "docs/finding.md does not have ${function} of ${header}")
    endif()
    if(NOT exported MATCHES "(^|\n)${function}\\(")
      message(SEND_ERROR "cmake/exported.txt does not have ${function} of ${header}")
    endif()
  endforeach()
endforeach()
message(STATUS "docs/finding.md has all ${found} public functions")

# Each header of the C++ interface compiles alone.
file(GLOB interface CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}/api ${PROJECT_SOURCE_DIR}/api/seedforest/*.hpp)
set(sources)
foreach(header ${interface})
  string(REPLACE "/" "-" name ${header})
  file(CONFIGURE OUTPUT headers/${name}.cpp CONTENT "#include \"${header}\"\n")
  list(APPEND sources ${CMAKE_CURRENT_BINARY_DIR}/headers/${name}.cpp)
endforeach()
add_library(public-headers-interface OBJECT ${sources})
target_link_libraries(public-headers-interface PRIVATE seedforest-api seedforest-options)
