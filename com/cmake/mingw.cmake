# What both mingw-w64 toolchains share; mingw-x86_64.cmake and mingw-i686.cmake set the target first.
set(CMAKE_SYSTEM_NAME Windows)
set(TOVRAND_MINGW_PREFIX ${CMAKE_SYSTEM_PROCESSOR}-w64-mingw32)
# The posix thread model gives std::mutex and std::thread to the ODBC engine.
set(CMAKE_CXX_COMPILER ${TOVRAND_MINGW_PREFIX}-g++-posix)
set(CMAKE_C_COMPILER ${TOVRAND_MINGW_PREFIX}-gcc-posix)
set(CMAKE_RC_COMPILER ${TOVRAND_MINGW_PREFIX}-windres)
set(TOVRAND_WIDL ${TOVRAND_MINGW_PREFIX}-widl)
set(CMAKE_FIND_ROOT_PATH /usr/${TOVRAND_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
