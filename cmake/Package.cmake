# The two ZIPs of the Windows target, each with its sha256 beside it:
#   `cmake --build --preset windows-release --target package`             for host developers
#   `cmake --build --preset windows-release --target package-self-check`  the tests, for any Windows

get_filename_component(dependency_prefix ${log4cxx_DIR}/../../.. ABSOLUTE)
set(runtime_dlls "")
foreach(dll liblog4cxx libstdc++-6 libgcc_s_seh-1 libwinpthread-1)
  list(APPEND runtime_dlls ${dependency_prefix}/bin/${dll}.dll)
endforeach()

# Licences and bill of materials of the recipes' components that an installation redistributes.
function(vantry_install_notices)
  cmake_parse_arguments(PARSE_ARGV 0 ARG "" "" "COMPONENTS;OPTIONS")
  list(REMOVE_DUPLICATES ARG_COMPONENTS)
  install(
    CODE "set(components ${ARG_COMPONENTS})
set(dependency_prefix \"${dependency_prefix}\")
set(product ${PROJECT_NAME})
set(product_version ${PROJECT_VERSION})
include(\"${CMAKE_CURRENT_FUNCTION_LIST_DIR}/InstallNotices.cmake\")"
    ${ARG_OPTIONS})
endfunction()
set(library_components apr apr-util boost cpprestsdk expat gcc log4cxx mingw-w64 safeint)
set(sandbox_components boost cli11 gcc mingw-w64 nlohmann-json openssl)

# --- For host developers: the library, log4cxx, which is shared with the host, and examples.

install(FILES $<TARGET_FILE:TAVIKVANTRYAPI>.debug $<TARGET_FILE:vantry>.debug DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${PROJECT_BINARY_DIR}/api/TAVIKVANTRYAPI.def ${PROJECT_BINARY_DIR}/c-api/vantry.def
              ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}/vantry.lib DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(PROGRAMS ${runtime_dlls} DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${dependency_prefix}/lib/liblog4cxx.dll.a DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${dependency_prefix}/include/log4cxx DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${log4cxx_DIR} DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake)
install(TARGETS vantry-console-host)
install(DIRECTORY examples/console-host examples/minimal-host DESTINATION examples)
install(DIRECTORY bindings DESTINATION .)

# The package has the pages in one folder, and the hosts' page as its README.
foreach(page docs/for-hosts.md docs/faults.md SECURITY.md CHANGELOG.md)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${page})
  file(READ ${PROJECT_SOURCE_DIR}/${page} text)
  string(REPLACE "](../" "](" text "${text}")
  string(REPLACE "](docs/" "](" text "${text}")
  string(REPLACE "](for-hosts.md" "](README.md" text "${text}")
  get_filename_component(name ${page} NAME)
  string(REPLACE for-hosts.md README.md name ${name})
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/pages/${name} CONTENT "${text}" @ONLY)
endforeach()
install(DIRECTORY ${PROJECT_BINARY_DIR}/pages/ DESTINATION .)
install(DIRECTORY build/docs/ DESTINATION api) # written by scripts/docs
set(package_components ${library_components} cli11)
if(TARGET vantry-desktop-host AND TARGET vantry-sandbox)
  install(TARGETS vantry-desktop-host vantry-sandbox)
  install(DIRECTORY examples/desktop-host DESTINATION examples)
  install(FILES examples/desktop-host/try-it.cmd DESTINATION .)
  install(DIRECTORY docs/images DESTINATION .)
  list(APPEND package_components ${sandbox_components})
endif()
vantry_install_notices(COMPONENTS ${package_components})

# --- The self-check: everything that runs the tests without this project.

set(self_check_options COMPONENT self-check EXCLUDE_FROM_ALL)
if(TARGET vantry-self-check AND TARGET vantry-tests AND TARGET vantry-sandbox)
  set(self_check_programs vantry-self-check vantry-tests vantry-whitebox-tests vantry-fault-tests
                          vantry-unload-tests vantry-c-api-tests vantry-sandbox)
  install(TARGETS TAVIKVANTRYAPI vantry ${self_check_programs} RUNTIME ${self_check_options})
  install(PROGRAMS ${runtime_dlls} DESTINATION ${CMAKE_INSTALL_BINDIR} ${self_check_options})
  install(FILES self-check/self-check.cmd self-check/README.md DESTINATION . ${self_check_options})
  install(DIRECTORY tests/golden DESTINATION tests ${self_check_options})
  install(FILES tests/faults/faults.json DESTINATION tests/faults ${self_check_options})
  vantry_install_notices(COMPONENTS ${library_components} ${sandbox_components} googletest
                         OPTIONS ${self_check_options})

  set(self_check_config ${PROJECT_BINARY_DIR}/CPackSelfCheckConfig.cmake)
  file(
    WRITE ${self_check_config}
    "include(\${CMAKE_CURRENT_LIST_DIR}/CPackConfig.cmake)
set(CPACK_INSTALL_CMAKE_PROJECTS \"${PROJECT_BINARY_DIR};${PROJECT_NAME};self-check;/\")
string(APPEND CPACK_PACKAGE_FILE_NAME -self-check)
")
  add_custom_target(
    package-self-check
    COMMAND ${CMAKE_CPACK_COMMAND} --config ${self_check_config}
    COMMENT "Packing the self-check"
    USES_TERMINAL VERBATIM)
  add_dependencies(package-self-check TAVIKVANTRYAPI vantry ${self_check_programs})
endif()

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_FILE_NAME TAVIKVANTRYAPI-${PROJECT_VERSION}-win64)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_SOURCE_DIR}/dist)
set(CPACK_PACKAGE_VENDOR "The TAVIKVANTRYAPI developers")
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_STRIP_FILES ON)
include(CPack)
