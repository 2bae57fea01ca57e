# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi_moc(TARGET SOURCES...): runs moc for sources of which each includes NAME.moc at its end. CMake's AUTOMOC would
# look through all sources of a target, which takes longer than to compile some of the tests.

if(QT_MAJOR EQUAL 4)
  set(S7PPI_MOC ${QT_MOC_EXECUTABLE})
else()
  set(S7PPI_MOC ${S7PPI_QT_PREFIX}moc)
endif()

function(s7ppi_moc target)
  set(directory ${CMAKE_CURRENT_BINARY_DIR}/${target}_moc)
  set(includes $<TARGET_PROPERTY:${target},INCLUDE_DIRECTORIES>)
  set(definitions $<TARGET_PROPERTY:${target},COMPILE_DEFINITIONS>)
  foreach(source IN LISTS ARGN)
    get_filename_component(source ${source} ABSOLUTE)
    get_filename_component(name ${source} NAME_WE)
    add_custom_command(OUTPUT ${directory}/${name}.moc
      COMMAND ${S7PPI_MOC} "$<$<BOOL:${includes}>:-I$<JOIN:${includes},;-I>>"
        "$<$<BOOL:${definitions}>:-D$<JOIN:${definitions},;-D>>" ${source} -o ${directory}/${name}.moc
      DEPENDS ${source} COMMAND_EXPAND_LISTS VERBATIM)
    target_sources(${target} PRIVATE ${directory}/${name}.moc)
  endforeach()
  target_include_directories(${target} PRIVATE ${directory})
endfunction()
