# Puts SonavitMachine.dll before a program that knows nothing of it, in a Wine prefix of the test's own:
#   cmake -DEMULATOR=... -DPREFIX=... -DSERVER=... -DCLIENT=... -DMACHINES=... -P check.cmake
# and compares what the program prints, and what the machine records, with the machine's file.
cmake_minimum_required(VERSION 3.25)

set(ENV{SONAVIT_MACHINES} "") # the server's own search

# fail(<text> <shown>...)
function(fail text)
  list(JOIN ARGN "\n" shown)
  message(FATAL_ERROR "${text}\n${shown}")
endfunction()

# wine(<program> [<argument>...]): sets output, errors and code
macro(wine)
  execute_process(
    COMMAND "${EMULATOR}" "${PREFIX}" ${ARGN}
    OUTPUT_VARIABLE output
    ERROR_VARIABLE errors
    RESULT_VARIABLE code
    TIMEOUT 120
  )
  string(REPLACE "\r\n" "\n" output "${output}")
endmacro()

# behind(<machine> <mode>): runs the client; sets output, errors, code, journal and census
macro(behind machine mode)
  set(ENV{SONAVIT_MACHINE} "${machine}")
  file(REMOVE "${PREFIX}/journal" "${PREFIX}/census")
  set(ENV{SONAVIT_JOURNAL} "Z:${PREFIX}/journal")
  set(ENV{SONAVIT_CENSUS} "Z:${PREFIX}/census")
  wine("${CLIENT}" ${mode})
  set(journal "")
  set(census "")
  foreach(record IN ITEMS journal census)
    if(EXISTS "${PREFIX}/${record}")
      file(READ "${PREFIX}/${record}" ${record})
    endif()
  endforeach()
endmacro()

# member(<result> <json> <usual> <key>...)
function(member result json usual)
  string(JSON value ERROR_VARIABLE missing GET "${json}" ${ARGN})
  if(missing)
    set(value "${usual}")
  endif()
  set(${result} "${value}" PARENT_SCOPE)
endfunction()

# expected(<result> <machine>): the lines that the client prints
function(expected result machine)
  file(READ "${MACHINES}/${machine}.json" text)
  set(lines "")
  set(active 1)
  set(disabled 2)
  set(notPresent 4)
  set(unplugged 8)
  string(JSON count LENGTH "${text}" endpoints)
  math(EXPR last "${count} - 1")
  foreach(index RANGE ${last})
    string(JSON endpoint GET "${text}" endpoints ${index})
    member(id "${endpoint}" "" id)
    member(flow "${endpoint}" "" flow)
    member(state "${endpoint}" active state)
    member(name "${endpoint}" "" properties deviceDescription)
    member(installed "${endpoint}" ON installed)
    if(NOT installed)
      continue()
    endif()
    string(APPEND lines "${flow} ${${state}} ${id} ${name}\n")
  endforeach()
  set(${result} "${lines}" PARENT_SCOPE)
endfunction()

# countOf(<result> <text> <word>)
function(countOf result text word)
  string(REPLACE ";" "," text "${text}")
  string(REGEX MATCHALL "${word}" found "${text}")
  list(LENGTH found count)
  set(${result} ${count} PARENT_SCOPE)
endfunction()

wine(regsvr32 /s "Z:${SERVER}")
if(code)
  fail("SonavitMachine.dll cannot be registered (${code})" "${errors}")
endif()

foreach(machine IN ITEMS desktop crowded)
  expected(lines ${machine})
  foreach(mode IN ITEMS list exit)
    behind(${machine} ${mode})
    if(code OR NOT output STREQUAL lines)
      fail("${machine}, ${mode}: the client (${code}) does not list the machine:" "${output}" "expected:" "${lines}" "${errors}")
    endif()
  endforeach()
  behind(${machine} list)
  countOf(creations "${journal}" "CoCreateInstance\\(")
  countOf(states "${journal}" "IMMDevice::GetState\\(")
  countOf(endpoints "${lines}" "\n")
  if(NOT creations EQUAL 1 OR NOT states EQUAL endpoints)
    fail("${machine}: the journal has not one creation and ${endpoints} states:" "${journal}")
  endif()
  if(NOT census STREQUAL "nothing\n")
    fail("${machine}: the client left nothing, but the census says:" "${census}")
  endif()
endforeach()

behind(desktop leak)
if(NOT census MATCHES "references on IMMDevice [^\n]*: 1\n")
  fail("the census does not name the endpoint that the client keeps:" "${census}")
endif()

behind("Z:${MACHINES}/studio.json" list)
expected(lines studio)
if(NOT output STREQUAL lines)
  fail("a machine is not found by its file:" "${output}" "${errors}")
endif()

# A client that asks the wave functions meets the system's wave devices, the same before and after.
behind(desktop waves)
string(REGEX MATCHALL "[0-9]+ wave devices" waves "${output}")
list(LENGTH waves answers)
list(REMOVE_DUPLICATES waves)
list(LENGTH waves different)
if(code OR NOT answers EQUAL 2 OR NOT different EQUAL 1 OR NOT output MATCHES "Desk Monitor")
  fail("the wave functions (${code}):" "${output}" "${errors}")
endif()

foreach(machine IN ITEMS "" nowhere "Z:${CMAKE_CURRENT_LIST_FILE}")
  behind("${machine}" list)
  if(NOT code EQUAL 1 OR NOT output STREQUAL "no enumerator: 0x80040111\n" OR NOT errors MATCHES "SonavitMachine: no machine: ")
    fail("\"${machine}\" is no machine, but the client (${code}) prints:" "${output}" "${errors}")
  endif()
endforeach()

wine(regsvr32 /u /s "Z:${SERVER}")
behind("" list)
if(code OR errors MATCHES "SonavitMachine" OR output MATCHES "Desk Monitor")
  fail("without its registration the server still answers (${code}):" "${output}" "${errors}")
endif()
