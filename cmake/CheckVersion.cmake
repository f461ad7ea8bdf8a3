# The version also stands where hosts and vcpkg read it: a build in which they differ ends here.
file(READ ${PROJECT_SOURCE_DIR}/api/TAVIKVANTRYAPI.h header)
file(READ ${PROJECT_SOURCE_DIR}/vcpkg.json manifest)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS api/TAVIKVANTRYAPI.h vcpkg.json)

math(EXPR header_version "${PROJECT_VERSION_MAJOR} * 10000 + ${PROJECT_VERSION_MINOR} * 100 + ${PROJECT_VERSION_PATCH}")
if(NOT header MATCHES "#define TAVIKVANTRYAPI_VERSION ${header_version}\n")
  message(FATAL_ERROR "api/TAVIKVANTRYAPI.h must define TAVIKVANTRYAPI_VERSION as ${header_version}")
endif()
string(JSON manifest_version GET "${manifest}" version)
if(NOT manifest_version STREQUAL PROJECT_VERSION)
  message(FATAL_ERROR "vcpkg.json must name version ${PROJECT_VERSION}")
endif()
