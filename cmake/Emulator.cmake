# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# Programs that tests start by path. In a build for another machine the path is that of a script that runs the
# program in CMAKE_CROSSCOMPILING_EMULATOR, so that the build machine's kernel need not know the emulator.
#
#   s7ppi_startable(TARGET)    makes TARGET, of the same directory, startable as ${S7PPI_START_DIR}/TARGET
#   S7PPI_TEST_TIMEOUT         seconds for one test program; the emulator makes them ten times slower
#   S7PPI_LONG_TEST_TIMEOUT    the same for one that tries every value or starts many programs

set(S7PPI_START_DIR ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
set(S7PPI_TEST_TIMEOUT 300)
set(S7PPI_LONG_TEST_TIMEOUT 600)
if(BUILD_TESTING AND CMAKE_CROSSCOMPILING_EMULATOR)
  set(S7PPI_START_DIR ${PROJECT_BINARY_DIR}/run)
  set(S7PPI_TEST_TIMEOUT 600)
  set(S7PPI_LONG_TEST_TIMEOUT 1800)
  add_library(emulated_kernel MODULE ${PROJECT_SOURCE_DIR}/tests/support/emulated_kernel.cpp)
  set_target_properties(emulated_kernel PROPERTIES CXX_STANDARD 11)
  target_link_libraries(emulated_kernel PRIVATE s7ppi_options ${CMAKE_DL_LIBS})
  list(APPEND CMAKE_CROSSCOMPILING_EMULATOR
       -E LD_PRELOAD=${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/libemulated_kernel.so)
endif()

function(s7ppi_startable target)
  if(NOT TARGET emulated_kernel)
    return()
  endif()
  list(POP_FRONT CMAKE_CROSSCOMPILING_EMULATOR emulator)
  list(JOIN CMAKE_CROSSCOMPILING_EMULATOR " " arguments)
  find_program(S7PPI_EMULATOR ${emulator} REQUIRED)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/emulated_program.in ${S7PPI_START_DIR}/${target} @ONLY
                 FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
  file(MAKE_DIRECTORY ${S7PPI_START_DIR}/.emulator)
  file(CREATE_LINK ${S7PPI_EMULATOR} ${S7PPI_START_DIR}/.emulator/${target} SYMBOLIC)
  add_dependencies(${target} emulated_kernel)
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:${target}> ${S7PPI_START_DIR}/.${target})
endfunction()
