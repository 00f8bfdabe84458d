# The installed form of Tovrand: libtovrand.so for users (core, classes, registry and the engines),
# its headers under <prefix>/include/tovrand/, a CMake package (Tovrand::tovrand), a pkg-config file,
# the tovrand command with its private-server script, the schema, the man page and the README.
#
# Installed components, which the Debian packages follow (cmake/Packaging.cmake):
#   runtime  the shared library
#   dev      headers, the unversioned .so link, CMake package, pkg-config file, C++ example
#   command  bin/tovrand, share/tovrand/ (sandbox, schema), man page, README
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

option(TOVRAND_DEBIAN_LAYOUT
       "Install as the Debian packages want it: gzipped man page, a doc directory per package with copyright and changelog"
       OFF)

# The static libraries the shared library is made of. An engine joins it by its name here.
set(TOVRAND_SHARED_PARTS tovrand_core tovrand_engine tovrand_odbc tovrand_mariadb tovrand_host)

foreach(part IN LISTS TOVRAND_SHARED_PARTS)
  set_target_properties(${part} PROPERTIES POSITION_INDEPENDENT_CODE ON)
endforeach()

# The command and the tests keep linking the static libraries; only users link this one. Its target
# name differs from the command's; the file is libtovrand.so. Every object of the parts goes in, not
# only those the library's own source reaches, since a user may call any member; linking the parts as
# well brings what they link (ODBC, Connector/C), and adds nothing of theirs twice, every symbol of
# theirs being defined already.
set(tovrand_shared_objects)
foreach(part IN LISTS TOVRAND_SHARED_PARTS)
  list(APPEND tovrand_shared_objects $<TARGET_OBJECTS:${part}>)
endforeach()
add_library(tovrand_shared SHARED "${TOVRAND_GENERATED_INCLUDE_DIR}/tovrand/Version.cpp" ${tovrand_shared_objects})
target_link_libraries(tovrand_shared PRIVATE ${TOVRAND_SHARED_PARTS})
target_include_directories(tovrand_shared INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_compile_features(tovrand_shared INTERFACE cxx_std_20)
set_target_properties(tovrand_shared PROPERTIES OUTPUT_NAME tovrand EXPORT_NAME tovrand VERSION ${TOVRAND_VERSION}
                                                SOVERSION ${TOVRAND_SOVERSION} LINKER_LANGUAGE CXX)
# Every symbol the parts use must be in them or in what they link: a missing one fails here, not in a
# user's program. The sanitizer runtimes are only resolved in executables, so those builds skip it.
if(NOT TOVRAND_SANITIZE AND NOT TOVRAND_FUZZ)
  target_link_options(tovrand_shared PRIVATE "LINKER:--no-undefined")
endif()
add_library(Tovrand::tovrand ALIAS tovrand_shared)

if(TOVRAND_DEBIAN_LAYOUT)
  set(TOVRAND_COMMAND_DOCDIR "${CMAKE_INSTALL_DATAROOTDIR}/doc/tovrand")
  set(TOVRAND_DEV_DOCDIR "${CMAKE_INSTALL_DATAROOTDIR}/doc/libtovrand-dev")
else()
  set(TOVRAND_COMMAND_DOCDIR "${CMAKE_INSTALL_DATAROOTDIR}/doc/tovrand")
  set(TOVRAND_DEV_DOCDIR "${CMAKE_INSTALL_DATAROOTDIR}/doc/tovrand")
endif()

install(TARGETS tovrand_shared EXPORT TovrandTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev)
install(TARGETS tovrand RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT command)

# Headers. In the source tree they include one another from the repository root ("frame/Host.h");
# installed, they sit under include/tovrand/ and say <tovrand/frame/Host.h>, so that a user needs only
# <prefix>/include and no folder named frame/ or vb/ lands on anybody's include path. The rewrite
# happens at install time, from the headers as they are then.
set(TOVRAND_HEADER_FOLDERS vb entities frame porder porderchk pmrph pmrpi component)
set(TOVRAND_ENGINE_HEADERS host/NativeHost.h engine/ConnectionSettings.h)
install(CODE "
  set(TOVRAND_SOURCE_DIR \"${PROJECT_SOURCE_DIR}\")
  set(TOVRAND_STAGING_DIR \"${PROJECT_BINARY_DIR}/installed-headers\")
  set(TOVRAND_HEADER_FOLDERS \"${TOVRAND_HEADER_FOLDERS}\")
  set(TOVRAND_ENGINE_HEADERS \"${TOVRAND_ENGINE_HEADERS}\")
  set(TOVRAND_INCLUDE_DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_INCLUDEDIR}\")
  include(\"${CMAKE_CURRENT_LIST_DIR}/InstallHeaders.cmake\")
" COMPONENT dev)
install(FILES "${TOVRAND_GENERATED_INCLUDE_DIR}/tovrand/Version.h" DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tovrand
        COMPONENT dev)

# The CMake package: find_package(Tovrand CONFIG) gives Tovrand::tovrand. ODBC and Connector/C are
# linked into the shared library and appear in no installed header, so a user's build needs nothing
# else found.
set(TOVRAND_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Tovrand)
install(EXPORT TovrandTargets NAMESPACE Tovrand:: DESTINATION ${TOVRAND_CMAKE_DIR} COMPONENT dev)
configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/TovrandConfig.cmake.in"
                              "${PROJECT_BINARY_DIR}/TovrandConfig.cmake" INSTALL_DESTINATION ${TOVRAND_CMAKE_DIR})
# A new major version is a new type library: its interface is not the old one's.
write_basic_package_version_file("${PROJECT_BINARY_DIR}/TovrandConfigVersion.cmake" VERSION ${TOVRAND_VERSION}
                                 COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/TovrandConfig.cmake" "${PROJECT_BINARY_DIR}/TovrandConfigVersion.cmake"
        DESTINATION ${TOVRAND_CMAKE_DIR} COMPONENT dev)

# pkg-config: written at install time so that its prefix is the one installed to (cmake --install
# --prefix P), not the one configured.
install(CODE "
  set(TOVRAND_PC_PREFIX \"\${CMAKE_INSTALL_PREFIX}\")
  set(TOVRAND_PC_LIBDIR \"${CMAKE_INSTALL_LIBDIR}\")
  set(TOVRAND_PC_INCLUDEDIR \"${CMAKE_INSTALL_INCLUDEDIR}\")
  set(TOVRAND_VERSION \"${TOVRAND_VERSION}\")
  configure_file(\"${CMAKE_CURRENT_LIST_DIR}/tovrand.pc.in\" \"${PROJECT_BINARY_DIR}/pkgconfig/tovrand.pc\" @ONLY)
  file(INSTALL DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig\" TYPE FILE
       FILES \"${PROJECT_BINARY_DIR}/pkgconfig/tovrand.pc\")
" COMPONENT dev)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples/cpp/" DESTINATION ${TOVRAND_DEV_DOCDIR}/examples/cpp COMPONENT dev)

# The command's files. The private-database feature looks for the script at ../share/tovrand/sandbox
# from the program's own directory.
install(PROGRAMS "${PROJECT_SOURCE_DIR}/scripts/sandbox" DESTINATION ${CMAKE_INSTALL_DATADIR}/tovrand
        COMPONENT command)
install(FILES "${PROJECT_SOURCE_DIR}/schema/tovrand.sql" "${PROJECT_SOURCE_DIR}/schema/sample.sql"
              "${PROJECT_SOURCE_DIR}/schema/grants.sql" DESTINATION ${CMAKE_INSTALL_DATADIR}/tovrand/schema
        COMPONENT command)
install(FILES "${PROJECT_SOURCE_DIR}/README.md" "${PROJECT_SOURCE_DIR}/cli/PROTOCOL.md" DESTINATION ${TOVRAND_COMMAND_DOCDIR} COMPONENT command)
if(TOVRAND_DEBIAN_LAYOUT)
  # Debian wants man pages compressed, with no time stamp in the gzip header.
  set(tovrand_man_gz "${PROJECT_BINARY_DIR}/man/tovrand.1.gz")
  add_custom_command(OUTPUT "${tovrand_man_gz}" COMMAND ${CMAKE_COMMAND} -E make_directory "${PROJECT_BINARY_DIR}/man"
                     COMMAND gzip -9n -c "${PROJECT_SOURCE_DIR}/man/tovrand.1" > "${tovrand_man_gz}"
                     DEPENDS "${PROJECT_SOURCE_DIR}/man/tovrand.1" VERBATIM)
  add_custom_target(tovrand_man ALL DEPENDS "${tovrand_man_gz}")
  install(FILES "${tovrand_man_gz}" DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT command)
else()
  install(FILES "${PROJECT_SOURCE_DIR}/man/tovrand.1" DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT command)
endif()
