# Cross-compiles for 64-bit Windows with mingw-w64: GCC with posix threads, so that std::thread works.
# scripts/setup-windows builds the dependencies into VANTRY_WINDOWS_PREFIX, where find_package sees them.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# The same rule as in recipes/paths.sh.
if(NOT DEFINED VANTRY_WINDOWS_PREFIX)
    if(NOT "$ENV{VANTRY_CACHE}" STREQUAL "")
        set(VANTRY_WINDOWS_PREFIX "$ENV{VANTRY_CACHE}/windows/prefix")
    elseif(NOT "$ENV{XDG_CACHE_HOME}" STREQUAL "")
        set(VANTRY_WINDOWS_PREFIX "$ENV{XDG_CACHE_HOME}/tavikvantryapi/windows/prefix")
    else()
        set(VANTRY_WINDOWS_PREFIX "$ENV{HOME}/.cache/tavikvantryapi/windows/prefix")
    endif()
endif()
set(VANTRY_WINDOWS_PREFIX "${VANTRY_WINDOWS_PREFIX}" CACHE PATH "The dependencies built for Windows")
# A try_compile reads this file again, without the cache of the project.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VANTRY_WINDOWS_PREFIX)

# Nothing of the build machine but programs may be found.
set(CMAKE_FIND_ROOT_PATH "${VANTRY_WINDOWS_PREFIX}" /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# CTest starts the programs that the project builds through it.
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../scripts/with-wine")
