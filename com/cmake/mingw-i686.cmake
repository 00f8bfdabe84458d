# Cross build of the COM server for 32-bit Windows (PE32, for VB6 clients) with mingw-w64.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(TOVRAND_WIDL_ARCH --win32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
