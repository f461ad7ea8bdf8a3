# The version also stands where hosts and vcpkg read it: a build in which they differ ends here.
function(vantry_require_line file line)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
  file(READ ${PROJECT_SOURCE_DIR}/${file} text)
  string(FIND "${text}" "${line}\n" place)
  if(place EQUAL -1)
    message(FATAL_ERROR "${file} must have the line: ${line}")
  endif()
endfunction()

math(EXPR number "${PROJECT_VERSION_MAJOR} * 10000 + ${PROJECT_VERSION_MINOR} * 100 + ${PROJECT_VERSION_PATCH}")
vantry_require_line(api/TAVIKVANTRYAPI.h "#define TAVIKVANTRYAPI_VERSION ${number}")
vantry_require_line(c-api/vantry.h "#define VANTRY_VERSION ${number}")
vantry_require_line(vcpkg.json "  \"version\": \"${PROJECT_VERSION}\",")
