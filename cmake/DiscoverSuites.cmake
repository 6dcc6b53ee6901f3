# Read by ctest, which sets name, program, emulator, environment and timeout before: asks the test program for its
# suites and adds tests that run them: a suite with parameters alone, as it may take long, and up to ten others together,
# as most processes take longer to start and to end than for their tests. The list is kept until the program changes.

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
  string(REGEX REPLACE "[][;]" "," output "${output}") # of values of parameters; they have a meaning in CMake's lists
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

# Adds the test that runs the suites, and is named after the first one and the last one.
macro(add_suites)
  list(GET together 0 first)
  list(GET together -1 last)
  set(test "${name}:${first}")
  if(NOT first STREQUAL last)
    string(APPEND test "..${last}")
  endif()
  list(TRANSFORM together APPEND ".*")
  list(JOIN together ":" filter)
  add_test("${test}" ${emulator} "${program}" "--gtest_filter=${filter}")
  set_tests_properties("${test}" PROPERTIES TIMEOUT ${timeout} ENVIRONMENT "${environment}" COST ${cost})
  set(together)
endmacro()

if(EXISTS "${program}")
  file(STRINGS "${list}" suites)
  set(together)
  foreach(suite IN LISTS suites)
    if(suite MATCHES "/")
      set(others "${together}")
      set(together "${suite}")
      set(cost 1000) # the long ones come first
      add_suites()
      set(together "${others}")
      continue()
    endif()
    list(APPEND together "${suite}")
    list(LENGTH together size)
    if(size EQUAL 10)
      set(cost 100)
      add_suites()
    endif()
  endforeach()
  if(together)
    set(cost 100)
    add_suites()
  endif()
endif()
