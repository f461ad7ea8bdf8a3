# The ZIP for host developers: `cmake --build --preset windows-release --target package`.

install(FILES $<TARGET_FILE:TAVIKVANTRYAPI>.debug DESTINATION ${CMAKE_INSTALL_BINDIR})

install(FILES ${PROJECT_BINARY_DIR}/api/TAVIKVANTRYAPI.def DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(PROGRAMS $<TARGET_FILE:vantry-console-host> DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY examples/console-host DESTINATION examples)
install(
  FILES docs/for-hosts.md
  DESTINATION .
  RENAME README.md)

# log4cxx is shared with the host, so its development files belong to the package as much as its DLL.
get_filename_component(dependency_prefix ${log4cxx_DIR}/../../.. ABSOLUTE)
foreach(dll liblog4cxx libstdc++-6 libgcc_s_seh-1 libwinpthread-1)
  install(PROGRAMS ${dependency_prefix}/bin/${dll}.dll DESTINATION ${CMAKE_INSTALL_BINDIR})
endforeach()
install(FILES ${dependency_prefix}/lib/liblog4cxx.dll.a DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${dependency_prefix}/include/log4cxx DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${log4cxx_DIR} DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake)

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_FILE_NAME TAVIKVANTRYAPI-${PROJECT_VERSION}-win64)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_SOURCE_DIR}/dist)
set(CPACK_PACKAGE_VENDOR "The TAVIKVANTRYAPI developers")
include(CPack)
