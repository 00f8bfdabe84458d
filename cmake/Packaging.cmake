# Debian packages by CPack (make package), in three as Debian splits a library:
#   libtovrandN     the shared library alone, named by its SONAME so that programs built against one
#                   major version keep it while a later one is installed beside it
#   libtovrand-dev  headers, the libtovrand.so link, the CMake package, the pkg-config file
#   tovrand         the command (linked statically: it needs no libtovrandN), the schema, the
#                   private-server script, the man page
# Each carries its own copyright file and changelog in /usr/share/doc/<package>/, as Debian wants.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tovrand)
set(CPACK_PACKAGE_VENDOR "Tovrand developers")
set(CPACK_PACKAGE_CONTACT "Tovrand developers <dev@tovrand.invalid>")
set(CPACK_PACKAGE_VERSION ${TOVRAND_VERSION})
set(CPACK_OUTPUT_FILE_PREFIX "${PROJECT_SOURCE_DIR}/dist")
set(CPACK_STRIP_FILES ON)
# The install scripts write the pkg-config file with the prefix they are given: /usr, under DESTDIR.
set(CPACK_SET_DESTDIR ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                                                WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime dev command)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Tovrand developers <dev@tovrand.invalid>")
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# Depends from what the binaries link (dpkg-shlibdeps), and a shlibs file for the library's users.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(TOVRAND_RUNTIME_PACKAGE "libtovrand${TOVRAND_SOVERSION}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${TOVRAND_RUNTIME_PACKAGE})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
# The ODBC driver is loaded by name at connection time, so dpkg-shlibdeps cannot see it.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "odbc-mariadb, unixodbc")
# The dynamic loader's cache is refreshed by dpkg's trigger after the package's files are in place.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${CMAKE_CURRENT_LIST_DIR}/debian/triggers")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "Tovrand data-access component of an ERP's production module
Tovrand reads and writes the production module's tables on a MySQL or
MariaDB server: production orders derived from sales-order lines, their
review by seven departments with the allocation of month-prefixed production
numbers, and material requirements planning with stock reservation.

This package holds the shared library, over unixODBC and MariaDB
Connector/ODBC, or over MariaDB Connector/C (engine=mariadb).")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libtovrand-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEV_DEPENDS runtime)
set(CPACK_COMPONENT_DEV_DESCRIPTION
    "Tovrand data-access component (development files)
Tovrand reads and writes the production module's tables on a MySQL or
MariaDB server: production orders, their review and material requirements
planning.

This package holds the C++20 headers, the CMake package (target
Tovrand::tovrand), the pkg-config file and an example program.")

set(CPACK_DEBIAN_COMMAND_PACKAGE_NAME tovrand)
set(CPACK_DEBIAN_COMMAND_PACKAGE_SECTION database)
set(CPACK_DEBIAN_COMMAND_PACKAGE_DEPENDS "odbc-mariadb, unixodbc")
# The private database of `tovrand demo`, `tovrand sandbox` and `tovrand run` without a setting.
set(CPACK_DEBIAN_COMMAND_PACKAGE_SUGGESTS "mariadb-server, mariadb-client, openssl")
set(CPACK_COMPONENT_COMMAND_DESCRIPTION
    "command line of the Tovrand data-access component
Tovrand reads and writes the production module's tables of a make-to-order
ERP on a MySQL or MariaDB server: production orders, their review by seven
departments with the allocation of production numbers, and material
requirements planning with stock reservation.

The tovrand command calls the component's methods from JSON-lines scripts,
prints the schema, runs a demonstration on the sample data and starts a
private, throwaway MariaDB server. The schema, the sample data and the
grants of the component's database account are in /usr/share/tovrand.")

if(TOVRAND_DEBIAN_LAYOUT)
  # The changelog's date is the build's, or SOURCE_DATE_EPOCH's for a reproducible build.
  string(TIMESTAMP TOVRAND_CHANGELOG_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
  set(CPACK_DEBIAN_PACKAGE_VERSION ${TOVRAND_VERSION})
  configure_file("${CMAKE_CURRENT_LIST_DIR}/debian/changelog.in" "${PROJECT_BINARY_DIR}/debian/changelog" @ONLY)
  set(tovrand_changelog_gz "${PROJECT_BINARY_DIR}/debian/changelog.Debian.gz")
  add_custom_command(OUTPUT "${tovrand_changelog_gz}"
                     COMMAND gzip -9n -c "${PROJECT_BINARY_DIR}/debian/changelog" > "${tovrand_changelog_gz}"
                     DEPENDS "${PROJECT_BINARY_DIR}/debian/changelog" VERBATIM)
  add_custom_target(tovrand_debian_changelog ALL DEPENDS "${tovrand_changelog_gz}")
  set(tovrand_package_names ${TOVRAND_RUNTIME_PACKAGE} libtovrand-dev tovrand)
  foreach(component package IN ZIP_LISTS CPACK_COMPONENTS_ALL tovrand_package_names)
    install(FILES "${CMAKE_CURRENT_LIST_DIR}/debian/copyright" "${tovrand_changelog_gz}"
            DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${package} COMPONENT ${component})
  endforeach()
endif()

include(CPack)
