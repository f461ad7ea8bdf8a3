# Compares the exported names of LIBRARY with the interface's. Variables: LIBRARY, WINDOWS, NM or OBJDUMP.
cmake_minimum_required(VERSION 3.25)

set(expected
    CloseSession CreateSession CreateTicket GetCreatedTicketID GetLastResponse GetTicketList RequestTicketList
    SaveAttachment SaveTechNote SetCredentials SetEndPoint SetHWND SetValidateCertificateCallback)

if(WINDOWS)
  execute_process(COMMAND ${OBJDUMP} -p ${LIBRARY} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
  # Rows of the table of names: "[index] name" or, from other versions of the tool, "[index] +base[ordinal] hint name".
  string(REGEX REPLACE ".*Ordinal/Name Pointer\\] Table" "" output "${output}")
  string(REGEX MATCHALL "\t\\[ *[0-9]+\\] [^\n]+" rows "${output}")
else()
  execute_process(COMMAND ${NM} --dynamic --defined-only --extern-only ${LIBRARY}
                  OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "[0-9a-f]+ . [^\n]+" rows "${output}")
endif()
list(TRANSFORM rows REPLACE "^.* " "" OUTPUT_VARIABLE exported)
list(SORT exported)

if(NOT exported STREQUAL expected)
  message(FATAL_ERROR "expected: ${expected}\nexported: ${exported}")
endif()
