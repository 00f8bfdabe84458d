# Run at install time (cmake/Install.cmake): copies the public headers to include/tovrand/ with their
# includes of one another rewritten from the repository-root form "frame/Host.h" to <tovrand/frame/Host.h>.
set(headers)
foreach(folder IN LISTS TOVRAND_HEADER_FOLDERS)
  file(GLOB found RELATIVE "${TOVRAND_SOURCE_DIR}" "${TOVRAND_SOURCE_DIR}/${folder}/*.h")
  list(APPEND headers ${found})
endforeach()
list(APPEND headers ${TOVRAND_ENGINE_HEADERS})
list(SORT headers)

string(REPLACE ";" "|" folders "${TOVRAND_HEADER_FOLDERS};engine;host")
foreach(header IN LISTS headers)
  file(READ "${TOVRAND_SOURCE_DIR}/${header}" text)
  string(REGEX REPLACE "#include \"((${folders})/[^\"]+)\"" "#include <tovrand/\\1>" text "${text}")
  get_filename_component(folder "${header}" DIRECTORY)
  # Only rewritten files whose text changed get a new time stamp, so reinstalling is quiet.
  set(staged "${TOVRAND_STAGING_DIR}/tovrand/${header}")
  set(old "")
  if(EXISTS "${staged}")
    file(READ "${staged}" old)
  endif()
  if(NOT old STREQUAL text)
    file(WRITE "${staged}" "${text}")
  endif()
  file(INSTALL DESTINATION "${TOVRAND_INCLUDE_DESTINATION}/tovrand/${folder}" TYPE FILE
       FILES "${TOVRAND_STAGING_DIR}/tovrand/${header}")
endforeach()
