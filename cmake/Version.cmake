# One version for everything: project(Tovrand VERSION major.minor) is the type library's version (the
# COM shell registers 27.0); the library, the command and the packages carry major.minor.patch, the
# patch level counting releases that keep the type library. The shared library's SONAME follows the
# major version: a new type library is a new interface.
if(PROJECT_VERSION_PATCH STREQUAL "")
  set(TOVRAND_VERSION "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}.0")
else()
  set(TOVRAND_VERSION "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}.${PROJECT_VERSION_PATCH}")
endif()
set(TOVRAND_SOVERSION "${PROJECT_VERSION_MAJOR}")
set(TOVRAND_TYPELIB_VERSION "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")

# The code reads the version from a generated header, tovrand/Version.h, installed with the others.
set(TOVRAND_GENERATED_INCLUDE_DIR "${PROJECT_BINARY_DIR}/generated")
configure_file("${CMAKE_CURRENT_LIST_DIR}/Version.h.in" "${TOVRAND_GENERATED_INCLUDE_DIR}/tovrand/Version.h" @ONLY)
configure_file("${CMAKE_CURRENT_LIST_DIR}/Version.cpp.in" "${TOVRAND_GENERATED_INCLUDE_DIR}/tovrand/Version.cpp" @ONLY)
target_include_directories(tovrand_core PUBLIC $<BUILD_INTERFACE:${TOVRAND_GENERATED_INCLUDE_DIR}>)
