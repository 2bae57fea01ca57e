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

# The language of messages does not count: packages are built in another one. Contents of headers are remembered by
# inode, because precompiled ones are large. Depend mode takes the headers of a file from the compiler's own list,
# which ninja needs anyway, and not from one more run of the preprocessor. It looks at them when the file is
# compiled; so the times of headers must count (no include_file_mtime, no include_file_ctime): a header that was
# edited meanwhile would stand for the one that was compiled, and the wrong object would be found for it ever after.
set(CMAKE_CXX_COMPILER_LAUNCHER
  env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_DEPEND=1 CCACHE_INODECACHE=1
  CCACHE_SLOPPINESS=pch_defines,time_macros,locale
  ${PROJECT_SOURCE_DIR}/cmake/compile-cached ${S7PPI_CCACHE}
)

# The debug information names the directory of the build, which is another one in every copy of the tree.
add_compile_options(-fdebug-prefix-map=${PROJECT_SOURCE_DIR}=.)
