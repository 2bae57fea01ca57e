# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# The Debian packages. scripts/package builds them, scripts/check-packages looks at them.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL programs service driver devel)
# For what lies in /etc.
set(CPACK_SET_DESTDIR ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The s7ppi authors <s7ppi@example.com>")
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(this_version "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")

set(CPACK_DEBIAN_DRIVER_PACKAGE_NAME s7ppi-driver)
set(CPACK_DEBIAN_DRIVER_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DRIVER_DESCRIPTION "Simatic S7-200 communication driver for operator panels
A Qt plug-in through which the runtime of an operator panel reads and writes
the memory of Simatic S7-200 controllers over the PPI serial protocol. The
library also exports a toolkit for other communication drivers.")

set(CPACK_DEBIAN_PROGRAMS_PACKAGE_NAME s7ppi)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SECTION comm)
# The driver of Qt's SQL module that the spool of publish needs is loaded at run time, where no tool sees it.
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_DEPENDS "libqt5sql5-sqlite, s7ppi-driver ${this_version}")
set(CPACK_DEBIAN_PROGRAMS_DESCRIPTION "read and write Simatic S7-200 controllers from the command line
A command line host for communication drivers of operator panels. It opens a
serial port, loads the driver as a panel does, and reads, writes and watches
the memory of a controller. Also a simulated controller, on a pseudo-terminal
or a serial port, for work without the hardware.")

set(CPACK_DEBIAN_SERVICE_PACKAGE_NAME s7ppi-publish)
set(CPACK_DEBIAN_SERVICE_PACKAGE_SECTION net)
set(CPACK_DEBIAN_SERVICE_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_SERVICE_PACKAGE_DEPENDS "s7ppi ${this_version}, systemd")
set(CPACK_DEBIAN_SERVICE_PACKAGE_SUGGESTS mosquitto)
set(CPACK_DEBIAN_SERVICE_DESCRIPTION "values of Simatic S7-200 controllers for an MQTT broker, as a service
A template unit of systemd that runs s7ppi publish for each line with
controllers: begun with the machine, watched, begun anew after a crash, and
confined to its serial port. With examples of its settings, and of rules that
give a serial adapter a name of its own.")
set(service ${CMAKE_CURRENT_LIST_DIR}/service)
set(CPACK_DEBIAN_SERVICE_PACKAGE_CONTROL_EXTRA ${service}/postinst ${service}/prerm ${service}/postrm)
set(CPACK_DEBIAN_SERVICE_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Each file of the second is a password, which systemd reads as root, whatever rights the file has.
install(DIRECTORY DESTINATION /etc/s7ppi COMPONENT service DIRECTORY_PERMISSIONS
        OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
install(DIRECTORY DESTINATION /etc/s7ppi/credentials COMPONENT service DIRECTORY_PERMISSIONS
        OWNER_READ OWNER_WRITE OWNER_EXECUTE)
set(overrides_of_service "# Passwords, which nobody but root may even count.
s7ppi-publish: non-standard-dir-perm 0700 != 0755 [etc/s7ppi/credentials/]
")

set(CPACK_DEBIAN_DEVEL_PACKAGE_NAME s7ppi-dev)
set(CPACK_DEBIAN_DEVEL_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVEL_PACKAGE_DEPENDS "s7ppi-driver ${this_version}, qtbase5-dev")
set(CPACK_DEBIAN_DEVEL_PACKAGE_RECOMMENDS "s7ppi ${this_version}, cmake, g++, libqt5serialport5-dev, make, pkg-config")
set(CPACK_DEBIAN_DEVEL_DESCRIPTION "contract and toolkit for communication drivers of operator panels
Headers, CMake and pkg-config files for hosts that load communication drivers
and for drivers of other controllers: the contract between the two, and a
toolkit of frames, check sums, bytes, bits and byte order. For their tests a
scripted port and simulated controllers. With an example of each.")

# dpkg-shlibdeps finds what the programs and the library need where the packages are installed that they
# were linked with, so not for a foreign architecture. There this list stands: the library packages of
# Debian 12, with the versions that brought the newest symbols used. scripts/check-packages compares it with
# the libraries that the files name.
if(CMAKE_CROSSCOMPILING)
  string(JOIN ", " driver_libraries
    "libc6 (>= 2.34)" "libgcc-s1 (>= 3.5)" "libqt5core5a (>= 5.15.1)" "libqt5sql5 (>= 5.6.0~beta)"
    "libstdc++6 (>= 11)")
  string(JOIN ", " program_libraries
    "libc6 (>= 2.34)" "libgcc-s1 (>= 3.5)" "libmosquitto1 (>= 2.0.9)" "libncursesw6 (>= 6)"
    "libqt5core5a (>= 5.15.1)" "libqt5network5 (>= 5.0.2)" "libqt5serialport5 (>= 5.15.1)"
    "libqt5sql5 (>= 5.6.0~beta)" "libstdc++6 (>= 11)" "libtinfo6 (>= 6)")
  set(CPACK_DEBIAN_DRIVER_PACKAGE_DEPENDS ${driver_libraries})
  string(PREPEND CPACK_DEBIAN_PROGRAMS_PACKAGE_DEPENDS "${program_libraries}, ")
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
else()
  set(CPACK_DEBIAN_DRIVER_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SHLIBDEPS ON)
endif()

# What every package of Debian carries. The change log's date is that of SOURCE_DATE_EPOCH.
string(TIMESTAMP S7PPI_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(${CMAKE_CURRENT_LIST_DIR}/debian-changelog.in changelog.Debian @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/CHANGELOG.md changelog COPYONLY)
find_program(S7PPI_GZIP gzip REQUIRED)
execute_process(COMMAND ${S7PPI_GZIP} -9nf changelog.Debian changelog
                WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR} COMMAND_ERROR_IS_FATAL ANY)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  set(doc_dir ${CMAKE_INSTALL_DATADIR}/doc/${package})
  install(FILES ${CMAKE_CURRENT_LIST_DIR}/copyright ${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian.gz
          DESTINATION ${doc_dir} COMPONENT ${component})
  set(S7PPI_OVERRIDES "${overrides_of_${component}}")
  configure_file(${CMAKE_CURRENT_LIST_DIR}/lintian-overrides.in lintian-overrides/${package} @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/lintian-overrides/${package}
          DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides COMPONENT ${component})
endforeach()
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT programs)

# Where one looks for them on a Debian machine.
file(CREATE_LINK ../../s7ppi/examples ${CMAKE_CURRENT_BINARY_DIR}/examples SYMBOLIC)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/examples DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/s7ppi-dev COMPONENT devel)

# An archive is no file that the installation strips by itself.
foreach(archive IN LISTS S7PPI_ARCHIVES)
  install(CODE "
  execute_process(COMMAND ${CMAKE_STRIP} --strip-debug --enable-deterministic-archives
                          --remove-section=.comment --remove-section=.note
                          \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${S7PPI_ARCHIVE_DIR}/lib${archive}.a\"
                  COMMAND_ERROR_IS_FATAL ANY)" COMPONENT devel)
endforeach()

include(CPack)
