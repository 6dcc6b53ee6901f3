# Tests. Loggers and the shared enumerator are process-wide: each test leaves them as it has found them.
#
#   sonavit_add_test(<name> SOURCES <file>... [LIBRARIES <target>...] [WINDOWS_ONLY] [NO_PRIVATE_ACCESS]
#                    [PRECOMPILE <header>... | PRECOMPILED <target>] [ASAN_OPTIONS <option>...])
#   sonavit_add_precompiled(<target> [LIBRARIES <target>...] [HEADERS <header>...])
#
# Test sources may reach private operations (-fno-access-control) unless NO_PRIVATE_ACCESS is given. PRECOMPILE names
# headers that many of them read; several tests share what sonavit_add_precompiled has precompiled. ASAN_OPTIONS are added
# to those that all tests have.
set(SONAVIT_TEST_TIMEOUT 300 CACHE STRING "Seconds after which a test has failed")
mark_as_advanced(SONAVIT_TEST_TIMEOUT)

option(SONAVIT_TEST_DEBUG "Debug information in the tests, which makes them longer to build" ON)
option(SONAVIT_CLANG_FOR_TESTS "Compile tests with clang where the product's compiler is gcc: faster" OFF)
find_program(SONAVIT_CLANG clang++)
mark_as_advanced(SONAVIT_CLANG)

# Test sources are many and run for an instant, so it is their compilation that takes time: no optimisation, and the
# headers that all of them include are precompiled, unless there is a compiler cache, which works better without.
function(sonavit_set_test_options target)
  sonavit_configure_target(${target} TEST)
  if(NOT MSVC)
    target_compile_options(${target} PRIVATE -O0 $<IF:$<BOOL:${SONAVIT_TEST_DEBUG}>,-g1,-g0>)
  endif()
  if(SONAVIT_CLANG_FOR_TESTS AND SONAVIT_CLANG AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU"
     AND NOT CMAKE_CXX_COMPILER_LAUNCHER
  )
    set_target_properties(
      ${target} PROPERTIES CXX_COMPILER_LAUNCHER "${PROJECT_SOURCE_DIR}/cmake/shell/testcompiler"
    )
  endif()
endfunction()

function(sonavit_group_tests target)
  if(SONAVIT_GROUP_TESTS)
    if(MINGW)
      # Templates of a group have more sections than a usual object file can number.
      target_compile_options(${target} PRIVATE -Wa,-mbig-obj)
    endif()
    sonavit_compile_in_groups(${target} ${SONAVIT_TEST_GROUP_LIMIT})
  endif()
endfunction()

function(sonavit_allow_private_access target)
  if(NOT MSVC)
    target_compile_options(${target} PRIVATE -fno-access-control)
  endif()
endfunction()

# Tests for Windows are linked with LLVM's linker where it is installed; the product is linked with the compiler's own.
if(MINGW AND CMAKE_HOST_UNIX)
  find_program(SONAVIT_MINGW_LLD ld.lld-14)
  mark_as_advanced(SONAVIT_MINGW_LLD)
endif()

set(SONAVIT_TEST_HEADERS <gmock/gmock.h> <gtest/gtest.h> <string> <vector>)

function(sonavit_add_precompiled target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LIBRARIES;HEADERS")
  # An executable, as the tests are: what is precompiled for a library has other options.
  set(source "${CMAKE_CURRENT_BINARY_DIR}/${target}.cpp")
  file(CONFIGURE OUTPUT "${source}" CONTENT "int main() {}\n")
  add_executable(${target} EXCLUDE_FROM_ALL "${source}")
  target_include_directories(${target} PRIVATE "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${target} PRIVATE ${arg_LIBRARIES} GTest::gmock)
  sonavit_set_test_options(${target})
  sonavit_allow_private_access(${target})
  if(NOT CMAKE_CXX_COMPILER_LAUNCHER)
    sonavit_precompile(${target} PRIVATE ${SONAVIT_TEST_HEADERS} ${arg_HEADERS})
  endif()
endfunction()

function(sonavit_add_test name)
  cmake_parse_arguments(
    PARSE_ARGV 1 arg "WINDOWS_ONLY;NO_PRIVATE_ACCESS" "PRECOMPILED" "SOURCES;LIBRARIES;PRECOMPILE;ASAN_OPTIONS"
  )
  if(arg_WINDOWS_ONLY AND NOT WIN32)
    return()
  endif()
  if(NOT arg_SOURCES)
    message(FATAL_ERROR "${name} has no sources")
  endif()

  add_executable(${name} ${arg_SOURCES})
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} GTest::gmock GTest::gtest_main)
  sonavit_set_test_options(${name})
  if(SONAVIT_MINGW_LLD)
    target_link_options(${name} PRIVATE "SHELL:-wrapper \"${PROJECT_SOURCE_DIR}/cmake/wine/linker\"")
  endif()
  if(SONAVIT_REACHED)
    target_link_libraries(${name} PRIVATE reached_listener)
  endif()
  if(NOT arg_NO_PRIVATE_ACCESS)
    sonavit_allow_private_access(${name})
  endif()
  sonavit_group_tests(${name})
  if(arg_PRECOMPILED AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    sonavit_precompile(${name} REUSE_FROM ${arg_PRECOMPILED})
  elseif(NOT CMAKE_CXX_COMPILER_LAUNCHER)
    sonavit_precompile(${name} PRIVATE ${SONAVIT_TEST_HEADERS} ${arg_PRECOMPILE})
  endif()

  sonavit_discover_suites(${name} ${arg_ASAN_OPTIONS})
endfunction()

# Entries of ctest for the suites of an executable, found when ctest starts. Further arguments are options of
# AddressSanitizer.
function(sonavit_discover_suites name)
  set(environment)
  if(SONAVIT_SANITIZE)
    set(asanOptions detect_stack_use_after_return=1 strict_string_checks=1 check_initialization_order=1
                    malloc_context_size=5 ${ARGN}
    )
    list(JOIN asanOptions ":" asanOptions)
    set(environment
        "ASAN_OPTIONS=${asanOptions}"
        "UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1"
        "TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1"
    )
  endif()
  set(script "${CMAKE_CURRENT_BINARY_DIR}/${name}_suites.cmake")
  file(
    GENERATE
    OUTPUT "${script}"
    CONTENT
      "set(name [==[${name}]==])
set(program [==[$<TARGET_FILE:${name}>]==])
set(emulator [==[${CMAKE_CROSSCOMPILING_EMULATOR}]==])
set(environment [==[${environment}]==])
set(timeout ${SONAVIT_TEST_TIMEOUT})
include([==[${PROJECT_SOURCE_DIR}/cmake/DiscoverSuites.cmake]==])
"
  )
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${script}")
endfunction()

# sonavit_add_fuzz_target(<source> [SOURCES <file>...] [LIBRARIES <target>...]): the program fuzz_<name of the source>, and
# with the tests fuzz.<name>, which runs its corpus and a few seconds more.
function(sonavit_add_fuzz_target source)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBRARIES")
  get_filename_component(name "${source}" NAME_WE)
  string(REGEX REPLACE "_fuzz$" "" name "${name}")
  add_executable(fuzz_${name} "${source}" ${arg_SOURCES})
  target_include_directories(fuzz_${name} PRIVATE "${PROJECT_SOURCE_DIR}")
  target_link_libraries(fuzz_${name} PRIVATE ${arg_LIBRARIES})
  target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
  sonavit_configure_target(fuzz_${name} TEST)
  target_compile_options(fuzz_${name} PRIVATE -fsanitize=fuzzer-no-link)
  sonavit_allow_private_access(fuzz_${name})
  if(SONAVIT_GROUP_TESTS)
    sonavit_compile_in_groups(fuzz_${name} ${SONAVIT_TEST_GROUP_LIMIT})
  endif()
  if(SONAVIT_BUILD_TESTS)
    add_test(NAME fuzz.${name} COMMAND "${CMAKE_COMMAND}" "-DPROGRAM=$<TARGET_FILE:fuzz_${name}>"
             "-DCORPUS=${PROJECT_SOURCE_DIR}/tests/fuzz" "-DFOLDER=${CMAKE_BINARY_DIR}/fuzz" "-DTARGET=${name}"
             -P "${PROJECT_SOURCE_DIR}/tests/fuzz/briefly.cmake")
    set_tests_properties(fuzz.${name} PROPERTIES TIMEOUT ${SONAVIT_TEST_TIMEOUT})
  endif()
endfunction()
