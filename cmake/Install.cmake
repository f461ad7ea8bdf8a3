# What `cmake --install` and the package lay out: the library for a host developer, in the components `runtime` and
# `development`.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(package_config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/TAVIKVANTRYAPI)
install(
  TARGETS TAVIKVANTRYAPI vantry
  EXPORT TAVIKVANTRYAPITargets
  RUNTIME COMPONENT runtime
  LIBRARY COMPONENT runtime
  ARCHIVE COMPONENT development
  INCLUDES
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(
  EXPORT TAVIKVANTRYAPITargets
  NAMESPACE TAVIKVANTRYAPI::
  DESTINATION ${package_config_dir}
  COMPONENT development)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/TAVIKVANTRYAPIConfig.cmake.in TAVIKVANTRYAPIConfig.cmake
                              INSTALL_DESTINATION ${package_config_dir})
write_basic_package_version_file(TAVIKVANTRYAPIConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/TAVIKVANTRYAPIConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/TAVIKVANTRYAPIConfigVersion.cmake
        DESTINATION ${package_config_dir} COMPONENT development)

# Beside a DLL of GCC's the header says what another compiler can do.
set(cpp_header ${PROJECT_SOURCE_DIR}/api/TAVIKVANTRYAPI.h)
if(MINGW)
  file(READ ${cpp_header} text)
  string(
    REPLACE
      "#pragma once\n"
      "#pragma once

#if !defined(__MINGW32__) || (defined(_GLIBCXX_USE_CXX11_ABI) && !_GLIBCXX_USE_CXX11_ABI)
#error \"This DLL is for hosts of mingw-w64's GCC. For every other compiler there are vantry.h and vantry.dll beside it.\"
#endif
"
      guarded "${text}")
  if(guarded STREQUAL text)
    message(FATAL_ERROR "There is no place in ${cpp_header} for what another compiler is told")
  endif()
  set(cpp_header ${PROJECT_BINARY_DIR}/include/TAVIKVANTRYAPI.h)
  file(CONFIGURE OUTPUT ${cpp_header} CONTENT "${guarded}" @ONLY)
endif()
install(FILES ${cpp_header} ${VANTRY_HOST_TYPES_DIR}/VantryHostTypes.h c-api/vantry.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

if(PROJECT_IS_TOP_LEVEL AND MINGW AND TARGET vantry-console-host)
  include(${CMAKE_CURRENT_LIST_DIR}/Package.cmake)
endif()
