# What `cmake --install` and the package lay out: the library for a host developer.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(package_config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/TAVIKVANTRYAPI)
install(
  TARGETS TAVIKVANTRYAPI
  EXPORT TAVIKVANTRYAPITargets
  INCLUDES
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(
  EXPORT TAVIKVANTRYAPITargets
  NAMESPACE TAVIKVANTRYAPI::
  DESTINATION ${package_config_dir})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/TAVIKVANTRYAPIConfig.cmake.in TAVIKVANTRYAPIConfig.cmake
                              INSTALL_DESTINATION ${package_config_dir})
write_basic_package_version_file(TAVIKVANTRYAPIConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/TAVIKVANTRYAPIConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/TAVIKVANTRYAPIConfigVersion.cmake DESTINATION ${package_config_dir})
get_target_property(host_types_dir TAVIKVANTRYAPI VANTRY_HOST_TYPES_DIR)
install(FILES api/TAVIKVANTRYAPI.h ${host_types_dir}/VantryHostTypes.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

if(MINGW AND TARGET vantry-console-host)
  include(${CMAKE_CURRENT_LIST_DIR}/Package.cmake)
endif()
