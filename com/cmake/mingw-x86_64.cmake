# Cross build of the COM server for 64-bit Windows (PE32+) with mingw-w64.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(TOVRAND_WIDL_ARCH --win64)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
