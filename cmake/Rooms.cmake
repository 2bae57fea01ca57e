# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi_join_rooms(RESULT TARGET SOURCES...): where S7PPI_JOIN_ROOMS is ON, and in tests/ where it is TESTS, one file in the
# place of each room's sources, that includes them: most of the time to compile goes into headers, which are read once a
# room then. Headers, a room's only source and sources with SKIP_UNITY_BUILD_INCLUSION stay what they are. TARGET, which
# compiles RESULT, must find the root of the tree among its includes.
#
# This is CMake's UNITY_BUILD, whose files have the path of the tree in them: a compiler cache would find nothing of
# another copy's. Names in a room's unnamed namespaces have to differ; a missing include does not show.

function(s7ppi_join_rooms result target)
  file(RELATIVE_PATH place ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
  if(NOT S7PPI_JOIN_ROOMS OR (S7PPI_JOIN_ROOMS STREQUAL "TESTS" AND NOT place MATCHES "^tests/"))
    set(${result} ${ARGN} PARENT_SCOPE)
    return()
  endif()
  set(joined "")
  set(rooms "")
  foreach(source IN LISTS ARGN)
    get_source_file_property(is_alone ${source} SKIP_UNITY_BUILD_INCLUSION)
    if(is_alone OR source MATCHES "\\.h$")
      list(APPEND joined ${source})
    else()
      get_filename_component(source ${source} ABSOLUTE)
      file(RELATIVE_PATH source ${PROJECT_SOURCE_DIR} ${source})
      get_filename_component(room ${source} DIRECTORY)
      list(APPEND rooms ${room})
      list(APPEND sources_${room} ${source})
    endif()
  endforeach()
  list(REMOVE_DUPLICATES rooms)
  foreach(room IN LISTS rooms)
    list(LENGTH sources_${room} count)
    if(count EQUAL 1)
      list(APPEND joined ${PROJECT_SOURCE_DIR}/${sources_${room}})
    else()
      list(TRANSFORM sources_${room} REPLACE "(.+)" "#include \"\\1\"\n")
      list(JOIN sources_${room} "" includes)
      string(REPLACE / _ name ${room})
      set(file ${CMAKE_CURRENT_BINARY_DIR}/${target}_rooms/${name}.cpp)
      file(CONFIGURE OUTPUT ${file} CONTENT "// NOLINTBEGIN(bugprone-suspicious-include)\n${includes}// NOLINTEND(bugprone-suspicious-include)\n" @ONLY)
      list(APPEND joined ${file})
    endif()
  endforeach()
  # gcc warns of types without linkage in what is included, and not in the file that it compiles.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    set_source_files_properties(${joined} PROPERTIES COMPILE_OPTIONS -Wno-subobject-linkage)
  endif()
  set(${result} ${joined} PARENT_SCOPE)
endfunction()
