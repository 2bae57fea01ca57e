# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# The manual pages, of what the programs tell with --help, so that no option can be missing in them. Without
# help2man or lowdown there are none, and all else is as usual.

find_program(S7PPI_HELP2MAN help2man)
find_program(S7PPI_LOWDOWN lowdown)
if(NOT S7PPI_HELP2MAN OR NOT S7PPI_LOWDOWN)
  message(STATUS "No help2man or lowdown: the manual pages are left out")
  return()
endif()

list(JOIN CMAKE_CROSSCOMPILING_EMULATOR " " emulator)
set(pages ${CMAKE_CURRENT_BINARY_DIR}/manual)
file(GLOB page_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/man/*.h2m)
set(needed ${page_sources} ${PROJECT_SOURCE_DIR}/docs/trace-format.md ${CMAKE_CURRENT_SOURCE_DIR}/make-manual
    s7ppi s7ppi-sim)
if(TARGET emulated_kernel)
  list(APPEND needed emulated_kernel)
endif()
add_custom_command(
  OUTPUT ${pages}.made
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/make-manual ${pages} ${PROJECT_VERSION}
          "${emulator} $<TARGET_FILE:s7ppi>" "${emulator} $<TARGET_FILE:s7ppi-sim>"
  COMMAND ${CMAKE_COMMAND} -E touch ${pages}.made
  DEPENDS ${needed}
  COMMENT "Making the manual pages"
  VERBATIM
)
add_custom_target(manual_pages ALL DEPENDS ${pages}.made)
install(DIRECTORY ${pages}/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT programs FILES_MATCHING PATTERN *.1.gz)
install(DIRECTORY ${pages}/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man5 COMPONENT programs FILES_MATCHING PATTERN *.5.gz)
