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

install(FILES api/TAVIKVANTRYAPI.h ${VANTRY_HOST_TYPES_DIR}/VantryHostTypes.h c-api/vantry.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

if(PROJECT_IS_TOP_LEVEL AND MINGW AND TARGET vantry-console-host)
  include(${CMAKE_CURRENT_LIST_DIR}/Package.cmake)
endif()
