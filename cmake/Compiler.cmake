# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# What every target of this project is compiled with.
#
#   s7ppi_options               an interface target: warnings, hardening, sanitizers, reproducible source paths
#   s7ppi_count_coverage(...)   where S7PPI_COVERAGE names it, library or programs: counts what is run of these
#                               objects, and of the library or program that is linked of them

include(CheckCXXCompilerFlag)
include(CheckPIESupported)

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
check_pie_supported(LANGUAGES CXX)

add_library(s7ppi_options INTERFACE)
target_compile_options(s7ppi_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast)
if(S7PPI_WARNINGS_AS_ERRORS)
  target_compile_options(s7ppi_options INTERFACE -Werror)
endif()

# The log lines carry the source's path relative to the build, never the path of a developer's tree. A compiler
# cache gives the compiler paths that are relative already, to the build directory.
file(RELATIVE_PATH source_from_build ${PROJECT_BINARY_DIR} ${PROJECT_SOURCE_DIR})
check_cxx_compiler_flag(-fmacro-prefix-map=a=b S7PPI_HAVE_MACRO_PREFIX_MAP)
if(S7PPI_HAVE_MACRO_PREFIX_MAP)
  target_compile_options(s7ppi_options INTERFACE
    -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=../../../ -fmacro-prefix-map=${source_from_build}=../../../)
else()
  message(WARNING "This compiler is too old for -fmacro-prefix-map: log lines will carry the path of this tree.")
endif()

# Against what gets past the driver's own checks. Only in optimised builds, which the checked C functions need;
# sanitizers bring their own.
if(CMAKE_BUILD_TYPE MATCHES "^(Release|RelWithDebInfo|MinSizeRel)$" AND NOT S7PPI_SANITIZE)
  target_compile_options(s7ppi_options INTERFACE
    -fstack-protector-strong -fstack-clash-protection -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  target_link_options(s7ppi_options INTERFACE -Wl,-z,relro -Wl,-z,now)
endif()

if(S7PPI_SANITIZE)
  target_compile_options(s7ppi_options INTERFACE
    -fsanitize=${S7PPI_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(s7ppi_options INTERFACE -fsanitize=${S7PPI_SANITIZE})
endif()

# ccache and gcc: a precompiled header is one of the file's inputs.
if(S7PPI_PRECOMPILED AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(s7ppi_options INTERFACE -fpch-preprocess)
endif()

# Without optimisation, which would merge lines. All other objects stay those of any other build.
function(s7ppi_count_coverage counted linked)
  if(NOT counted STREQUAL S7PPI_COVERAGE)
    return()
  endif()
  foreach(objects IN LISTS ARGN)
    target_compile_options(${objects} PRIVATE --coverage -O0 -U_FORTIFY_SOURCE)
    target_link_options(${objects} INTERFACE --coverage
      -Wl,--undefined=s7ppi_keep_counts,--wrap=_exit,--wrap=raise)
    target_link_libraries(${objects} INTERFACE kept_counts)
  endforeach()
  target_link_options(${linked} PRIVATE --coverage -Wl,--exclude-libs,libgcov.a)
endfunction()
