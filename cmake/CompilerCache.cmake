# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# ccache in front of the compiler, when it is installed and S7PPI_COMPILER_CACHE is ON. A copy of the tree at
# another place finds what this one compiled: ccache sees every path below the tree relative to the build
# directory, so no definition may hold the path of the tree (Compiler.cmake, Qt.cmake). Where the results are
# kept and how much of them is the user's own setting, ~/.cache/ccache unless CCACHE_DIR says otherwise;
# CCACHE_DISABLE=1 compiles everything anew.

if(NOT S7PPI_COMPILER_CACHE OR CMAKE_CXX_COMPILER_LAUNCHER)
  return()
endif()
find_program(S7PPI_CCACHE ccache)
if(NOT S7PPI_CCACHE)
  return()
endif()

# The language of messages does not count: packages are built in another one. A precompiled header is as new as
# the build: what counts is its contents, which ccache remembers by inode, because they are large. Depend mode
# takes the headers of a file from the compiler's own list, which ninja needs anyway, and not from one more run
# of the preprocessor.
set(CMAKE_CXX_COMPILER_LAUNCHER
  env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_DEPEND=1 CCACHE_INODECACHE=1
  CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime,locale
  ${PROJECT_SOURCE_DIR}/cmake/compile-cached ${S7PPI_CCACHE}
)
