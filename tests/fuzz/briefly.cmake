# The test of a fuzz target: its corpus, then a few seconds of changed inputs. These are the same ones on each machine, as
# many as the time allows. Variables: PROGRAM, TARGET, CORPUS (the folder fuzz of the tests), FOLDER (for what is found).
set(seconds 5)
set(found "${FOLDER}/${TARGET}")
file(REMOVE_RECURSE "${found}")
file(MAKE_DIRECTORY "${found}/corpus") # where the program adds inputs that reach something new
set(dictionary)
if(EXISTS "${CORPUS}/dictionary/${TARGET}.dict")
  set(dictionary "-dict=${CORPUS}/dictionary/${TARGET}.dict")
endif()
execute_process(
  COMMAND
    "${PROGRAM}" -seed=1 -max_total_time=${seconds} -timeout=60 -print_final_stats=1 ${dictionary}
    "-artifact_prefix=${found}/" "${found}/corpus" "${CORPUS}/corpus/${TARGET}"
  WORKING_DIRECTORY "${found}"
  RESULT_VARIABLE result
  ERROR_VARIABLE output
  OUTPUT_VARIABLE output
)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${output}\n${TARGET} has a finding; repeat it with\n  ${PROGRAM} FILE-IN-${found}")
endif()
if(NOT output MATCHES "stat::number_of_executed_units: [1-9]")
  message(FATAL_ERROR "${output}\n${TARGET} has run nothing")
endif()
