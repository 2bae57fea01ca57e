# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# One set of names for the modules of every Qt: s7ppi_qt_core, s7ppi_qt_sql, s7ppi_qt_test and, for the
# programs, s7ppi_qt_network and s7ppi_qt_serialport.

set(S7PPI_QT_MODULES Core Sql)
if(BUILD_TESTING)
  list(APPEND S7PPI_QT_MODULES Test)
endif()
if(S7PPI_PROGRAMS)
  list(APPEND S7PPI_QT_MODULES Network SerialPort)
endif()

if(QT_MAJOR EQUAL 4)
  list(TRANSFORM S7PPI_QT_MODULES PREPEND Qt OUTPUT_VARIABLE S7PPI_QT4_COMPONENTS)
  find_package(Qt4 4.8 QUIET COMPONENTS ${S7PPI_QT4_COMPONENTS})
  if(NOT Qt4_FOUND)
    list(JOIN S7PPI_QT4_COMPONENTS ", " modules)
    message(FATAL_ERROR
      "QT_MAJOR is 4, and no qmake of a Qt 4.8 with the modules ${modules} is found "
      "(QT_QMAKE_EXECUTABLE is ${QT_QMAKE_EXECUTABLE}).\n"
      "Say where it is: -D QT_QMAKE_EXECUTABLE=/opt/qt-4.8/bin/qmake")
  endif()
  set(S7PPI_QT_PREFIX Qt4::Qt)
elseif(QT_MAJOR EQUAL 5)
  find_package(Qt5 5.15 REQUIRED COMPONENTS ${S7PPI_QT_MODULES})
  set(S7PPI_QT_PREFIX Qt5::)
elseif(QT_MAJOR EQUAL 6)
  find_package(Qt6 6.4 REQUIRED COMPONENTS ${S7PPI_QT_MODULES})
  set(S7PPI_QT_PREFIX Qt6::)
else()
  message(FATAL_ERROR "QT_MAJOR is ${QT_MAJOR}; it must be 4, 5 or 6")
endif()

# Qt Test tells every file where the build is. Nothing here asks for that, and a compiler cache could not give
# the file to a build at another place.
if(BUILD_TESTING AND QT_MAJOR GREATER 4)
  get_target_property(definitions ${S7PPI_QT_PREFIX}Test INTERFACE_COMPILE_DEFINITIONS)
  list(FILTER definitions EXCLUDE REGEX "^QT_TESTCASE_(BUILD|SOURCE)DIR=")
  set_target_properties(${S7PPI_QT_PREFIX}Test PROPERTIES INTERFACE_COMPILE_DEFINITIONS "${definitions}")
endif()

foreach(module IN LISTS S7PPI_QT_MODULES)
  string(TOLOWER s7ppi_qt_${module} name)
  add_library(${name} INTERFACE)
  target_link_libraries(${name} INTERFACE ${S7PPI_QT_PREFIX}${module})
endforeach()
# No foreach: that of Qt 4.8 runs its body only once when gcc 9 or a later one compiles it.
target_compile_definitions(s7ppi_qt_core INTERFACE QT_NO_FOREACH)

# The library's own language level: C++11, but for Qt 6, whose headers need C++17.
if(QT_MAJOR EQUAL 6)
  set(S7PPI_RUNTIME_CXX_STANDARD 17)
else()
  set(S7PPI_RUNTIME_CXX_STANDARD 11)
endif()
