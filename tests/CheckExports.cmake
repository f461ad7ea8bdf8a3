# Compares the exported names of LIBRARY with the header's. Variables: LIBRARY, EXPECTED, WINDOWS, NM or OBJDUMP.
cmake_minimum_required(VERSION 3.25)

if(EXPECTED STREQUAL "")
  message(FATAL_ERROR "no functions were read from the header")
endif()
list(SORT EXPECTED)

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

if(NOT exported STREQUAL EXPECTED)
  message(FATAL_ERROR "expected: ${EXPECTED}\nexported: ${exported}")
endif()
