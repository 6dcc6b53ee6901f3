# Fails unless PROGRAM, a list of words, ends with success and writes LINE at the end of a line, or nothing if LINE is empty.
# With ERROR the program must end with 1 instead, and write ERROR to standard error and nothing to standard output.
#
#   cmake "-DPROGRAM=<program>;<argument>" "-DLINE=<text>" [-DERROR=<text>] -P expectline.cmake

cmake_minimum_required(VERSION 3.25)
list(REMOVE_ITEM PROGRAM "") # without an emulator, without an argument
execute_process(COMMAND ${PROGRAM} OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE result)
if(DEFINED ERROR)
  string(FIND "${errors}" "${ERROR}" place)
  if(NOT result EQUAL 1 OR place EQUAL -1 OR NOT output STREQUAL "")
    message(FATAL_ERROR "${PROGRAM} has ended with ${result}:\n${output}${errors}")
  endif()
  return()
endif()
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} has ended with ${result}:\n${output}${errors}")
endif()
if(LINE STREQUAL "")
  if(NOT output STREQUAL "")
    message(FATAL_ERROR "${PROGRAM} has written output, and none is expected:\n${output}")
  endif()
  return()
endif()
string(REPLACE "\r\n" "\n" output "${output}")
string(FIND "${output}" "${LINE}\n" place)
if(place EQUAL -1)
  message(FATAL_ERROR "${PROGRAM} has not written \"${LINE}\":\n${output}")
endif()
