# SPDX-License-Identifier: Apache-2.0
# Debian packages, built with `cpack` in a build folder of the preset "package"; script/package runs all
# steps.
#
#   library  libqdxcore0     the core only. Packages of plug-ins depend on the major version in the name.
#                            Only one can be installed, because the name of libcurl.so in the same folder
#                            has no version.
#   devel    libqdxcore-dev  headers, the static libraries of authors, CMake package, pkg-config
#                            files, pages and examples
#   tool     qdx             the command with the plug-ins, which have dependencies of their own and no
#                            version in their names
#   store    qdx-store       the store of a fleet, which alone needs databases
set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL library devel tool)
if(QDX_BUILD_STORE)
  list(APPEND CPACK_COMPONENTS_ALL store)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_PACKAGE_CONTACT "qdxcore maintainers <maintainers@qdxcore.example>")
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)  # strips, and builds -dbgsym packages
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/stage.cmake)
set(CPACK_QDX_PACKAGING_DIR ${CMAKE_CURRENT_LIST_DIR})

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(same_version "(= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libqdxcore${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_RECOMMENDS libcurl4)  # loaded for file transfers
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "core library that describes servers in the terms of CIM
The code that providers and consumers of CIM data share: typed values,
date-times, object paths, the interfaces of the object model, the registry
of providers, the logger, and services of the operating system.")

set(CPACK_DEBIAN_DEVEL_PACKAGE_NAME libqdxcore-dev)
set(CPACK_DEBIAN_DEVEL_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVEL_PACKAGE_DEPENDS
  "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} ${same_version}, libboost-dev (>= 1.74)")
set(CPACK_COMPONENT_DEVEL_DESCRIPTION "core library of qdx - development files
Headers, the CMake package qdxcore, pkg-config files, and the static
libraries on which providers of CIM data are built.
/usr/share/doc/libqdxcore-dev explains how to write a provider or a
consumer, with examples.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME qdx)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_TOOL_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} ${same_version}")
set(CPACK_DEBIAN_TOOL_PACKAGE_CONTROL_EXTRA
  ${CMAKE_CURRENT_LIST_DIR}/systemd/postinst
  ${CMAKE_CURRENT_LIST_DIR}/systemd/prerm
  ${CMAKE_CURRENT_LIST_DIR}/systemd/postrm)
set(CPACK_DEBIAN_TOOL_PACKAGE_SUGGESTS "pci.ids, usb.ids")  # names of devices
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_COMPONENT_TOOL_DESCRIPTION "describe and diagnose a Linux server
The command qdx queries its plug-ins about the machine and shows their data
in the terms of the DMTF Common Information Model (CIM). Other packages can
add plug-ins.")

set(CPACK_DEBIAN_STORE_PACKAGE_NAME qdx-store)
set(CPACK_DEBIAN_STORE_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_STORE_PACKAGE_SHLIBDEPS ON)
# The library does not tell that the table sqlite_schema came with 3.33.
set(CPACK_DEBIAN_STORE_PACKAGE_DEPENDS
  "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} ${same_version}, libsqlite3-0 (>= 3.33)")
set(CPACK_DEBIAN_STORE_PACKAGE_SUGGESTS "qdx, sqlite3 | postgresql-client")
set(CPACK_COMPONENT_STORE_DESCRIPTION "store of what many Linux servers consist of
The command qdx-store reads documents that qdx has written on any number of
hosts, and keeps their facts and when they changed in a file of SQLite or in
a database of PostgreSQL, with views for queries.")

include(CPack)
