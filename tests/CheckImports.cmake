# Whether LIBRARY imports the system's DLLs alone. Variables: LIBRARY, OBJDUMP.
cmake_minimum_required(VERSION 3.25)
set(system
    ADVAPI32
    CRYPT32
    IPHLPAPI
    KERNEL32
    ole32
    RPCRT4
    SHELL32
    USER32
    WINHTTP
    WS2_32
    msvcrt)
list(TRANSFORM system APPEND .dll)

execute_process(COMMAND ${OBJDUMP} -p ${LIBRARY} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "DLL Name: [^\n]+" imported "${output}")
list(TRANSFORM imported REPLACE "^DLL Name: " "")
if(imported STREQUAL "")
  message(FATAL_ERROR "no imports were read")
endif()
message(STATUS "imports: ${imported}")
list(REMOVE_ITEM imported ${system})
if(NOT imported STREQUAL "")
  message(FATAL_ERROR "no DLLs of the system: ${imported}")
endif()
