# Captures what Core Audio is on this computer, and compares the program's answers about it with those about the capture:
#   cmake -DFOLDER=<results> -DPROGRAM=<sonavit> [-DEMULATOR=<program> -DPREFIX=<its folder>] -P capture.cmake
# keeps the capture and the answers in FOLDER, where another program can be compared with them later:
#   cmake -DFOLDER=<results> -DREPLAY=<sonavit> -P capture.cmake
cmake_minimum_required(VERSION 3.25)

# run(<result> <argument>...): what the program prints. It must succeed.
function(run result)
  set(command "${PROGRAM}")
  if(EMULATOR)
    set(command "${EMULATOR}" "${PREFIX}" "${PROGRAM}")
  endif()
  execute_process(
    COMMAND ${command} ${ARGN}
    WORKING_DIRECTORY "${FOLDER}"
    OUTPUT_VARIABLE output
    ERROR_VARIABLE errors
    RESULT_VARIABLE code
    TIMEOUT 120
  )
  if(NOT code EQUAL 0)
    message(FATAL_ERROR "${ARGN}: ${code}\n${output}${errors}")
  endif()
  string(REPLACE "\r\n" "\n" output "${output}")
  set(${result} "${output}" PARENT_SCOPE)
endfunction()

# answers(<result> <option>...): the list, and what is shown of each endpoint in it, as one text in JSON, which names no
# machine
function(answers result)
  run(list list --json ${ARGN})
  string(JSON machine GET "${list}" machine)
  string(JSON cards LENGTH "${list}" cards)
  set(texts "${list}")
  set(number 0)
  while(number LESS cards)
    string(JSON count LENGTH "${list}" cards ${number} endpoints)
    set(index 0)
    while(index LESS count)
      string(JSON id GET "${list}" cards ${number} endpoints ${index} id)
      run(shown show "${id}" --json ${ARGN})
      string(APPEND texts "${shown}")
      math(EXPR index "${index} + 1")
    endwhile()
    math(EXPR number "${number} + 1")
  endwhile()
  if(machine)
    string(REPLACE "\"machine\": \"${machine}\"" "\"machine\": null" texts "${texts}")
  endif()
  set(${result} "${texts}" PARENT_SCOPE)
endfunction()

# compare(<option>...): with the answers in the folder
function(compare)
  answers(replayed --machine captured.json ${ARGN})
  file(WRITE "${FOLDER}/replayed.txt" "${replayed}")
  file(READ "${FOLDER}/answers.txt" original)
  if(NOT replayed STREQUAL original)
    message(FATAL_ERROR "the capture answers differently: see\n  diff ${FOLDER}/answers.txt ${FOLDER}/replayed.txt")
  endif()
endfunction()

if(REPLAY)
  set(PROGRAM "${REPLAY}")
  compare()
  return()
endif()

file(REMOVE_RECURSE "${FOLDER}")
file(MAKE_DIRECTORY "${FOLDER}")
answers(original)
string(FIND "${original}" "\"flow\"" found)
if(found EQUAL -1)
  message(FATAL_ERROR "this computer has no endpoint:\n${original}")
endif()
file(WRITE "${FOLDER}/answers.txt" "${original}")
run(ignored capture -o captured.json)
compare()
run(ignored capture --machine captured.json -o again.json)
file(READ "${FOLDER}/captured.json" first)
file(READ "${FOLDER}/again.json" second)
string(JSON name GET "${first}" name)
string(JSON otherName GET "${second}" name)
string(REPLACE "\"name\": \"${otherName}\"" "\"name\": \"${name}\"" second "${second}")
if(NOT first STREQUAL second)
  message(FATAL_ERROR "a capture of the capture differs: see\n  diff ${FOLDER}/captured.json ${FOLDER}/again.json")
endif()
