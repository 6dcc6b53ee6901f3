# Read by ctest, which sets name, program, emulator, environment and timeout before: asks the test program for its
# suites and adds a test for each of them. The list is kept until the program changes.

set(list "${program}.suites")
if(NOT EXISTS "${program}")
  add_test("${name}:NOT_BUILT" "${program}")
elseif(NOT EXISTS "${list}" OR "${program}" IS_NEWER_THAN "${list}")
  execute_process(
    COMMAND ${emulator} "${program}" --gtest_list_tests
    OUTPUT_VARIABLE output
    ERROR_VARIABLE errors
    RESULT_VARIABLE result
    TIMEOUT ${timeout}
  )
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${program} does not list its tests (${result}):\n${output}${errors}")
  endif()

  # A suite is a line "Name." at the left edge, perhaps with a comment on its type; its tests are indented.
  string(REPLACE ";" "," output "${output}")
  string(REGEX MATCHALL "[^\r\n]+" lines "${output}")
  set(suites)
  set(suite)
  foreach(line IN LISTS lines)
    if(line MATCHES "^([A-Za-z0-9_/]+)\\.( *#.*)? *$")
      set(suite "${CMAKE_MATCH_1}")
    elseif(line MATCHES "^  +[A-Za-z0-9_]" AND NOT line MATCHES "^ +DISABLED_" AND NOT suite MATCHES "(^|/)DISABLED_")
      list(APPEND suites "${suite}")
    endif()
  endforeach()
  list(REMOVE_DUPLICATES suites)
  if(NOT suites)
    message(FATAL_ERROR "${program} has no tests:\n${output}${errors}")
  endif()
  list(JOIN suites "\n" text)
  file(WRITE "${list}" "${text}\n")
endif()

if(EXISTS "${program}")
  file(STRINGS "${list}" suites)
  foreach(suite IN LISTS suites)
    add_test("${name}:${suite}" ${emulator} "${program}" "--gtest_filter=${suite}.*")
    set_tests_properties("${name}:${suite}" PROPERTIES TIMEOUT ${timeout} ENVIRONMENT "${environment}")
    if(suite MATCHES "/") # suites with parameters are the long ones: they come first
      set_tests_properties("${name}:${suite}" PROPERTIES COST 1000)
    endif()
  endforeach()
endif()
