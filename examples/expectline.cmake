# Fails unless PROGRAM, a list of words, ends with success and writes LINE at the end of a line, or nothing if LINE is empty.
#
#   cmake "-DPROGRAM=<program>;<argument>" "-DLINE=<text>" -P expectline.cmake

cmake_minimum_required(VERSION 3.25)
list(REMOVE_ITEM PROGRAM "") # without an emulator, without an argument
execute_process(COMMAND ${PROGRAM} OUTPUT_VARIABLE output RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} has ended with ${result}:\n${output}")
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
