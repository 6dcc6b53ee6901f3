# What every target of this project shares: language level, visibility, warnings and instrumentation.

# 32-bit x86, where gcc and clang compute with the x87 unit unless they are asked for SSE2.
if(CMAKE_SIZEOF_VOID_P EQUAL 4 AND CMAKE_SYSTEM_PROCESSOR MATCHES "^(i[3-6]86|x86)$" AND NOT MSVC)
  set(SONAVIT_X87 ON)
else()
  set(SONAVIT_X87 OFF)
endif()

# The folders of the product's sources.
set(SONAVIT_PRODUCT_FOLDERS foundation modules client simulator tools/sonavit)

# Warnings for our own sources; KIND is LIBRARY (products) or TEST (without warnings about conversions).
function(sonavit_set_warnings target kind)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /permissive- /utf-8 /Zc:__cplusplus /Zc:preprocessor)
    if(SONAVIT_WARNINGS_AS_ERRORS)
      target_compile_options(${target} PRIVATE /WX)
    endif()
    return()
  endif()

  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wextra-semi -Wformat=2 -Wcast-align
                                           -Wundef)
  if(kind STREQUAL "LIBRARY")
    target_compile_options(${target} PRIVATE -Wconversion -Woverloaded-virtual)
  elseif(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # GoogleTest's TYPED_TEST_SUITE leaves the last of its macro's arguments out.
    target_compile_options(${target} PRIVATE -Wno-gnu-zero-variadic-macro-arguments)
  endif()
  if(SONAVIT_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

# Sanitizers, coverage or fuzzer instrumentation, as the options request; KIND as above. In tests UndefinedBehaviorSanitizer
# leaves out what it checks at each access through a pointer: a third of the time of compiling them, and AddressSanitizer
# sees most of it. The products have all of it.
function(sonavit_instrument target kind)
  if(MSVC)
    if("address" IN_LIST SONAVIT_SANITIZE)
      target_compile_options(${target} PRIVATE /fsanitize=address)
    endif()
    return()
  endif()

  if(SONAVIT_SANITIZE)
    list(JOIN SONAVIT_SANITIZE "," sanitizers)
    target_compile_options(${target} PRIVATE -fsanitize=${sanitizers} -fno-sanitize-recover=all
                                             -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${sanitizers})
    if("undefined" IN_LIST SONAVIT_SANITIZE AND kind STREQUAL "TEST")
      target_compile_options(${target} PRIVATE -fno-sanitize=null,alignment,vptr)
    endif()
  endif()
  if(SONAVIT_FUZZ STREQUAL "ALL")
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
  if(SONAVIT_REACHED)
    target_compile_options(${target} PRIVATE -fsanitize-coverage=bb,no-prune,trace-pc-guard,pc-table)
    target_link_libraries(${target} PRIVATE reached_recorder)
  endif()
  if(SONAVIT_COVERAGE)
    sonavit_measure_coverage(${target} ${kind})
  endif()
endfunction()

# With clang only the sources of the product are counted: the tests' own are many. Counts need not be exact, as long as
# what ran is not 0, so that the product need not count with locked instructions, and is optimized a little: some tests
# take it through hundreds of machines.
function(sonavit_measure_coverage target kind)
  if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    set(counted "${PROJECT_BINARY_DIR}/counted-sources.txt")
    list(TRANSFORM SONAVIT_PRODUCT_FOLDERS PREPEND "src:${PROJECT_SOURCE_DIR}/" OUTPUT_VARIABLE patterns)
    list(TRANSFORM patterns APPEND "/*\n")
    list(JOIN patterns "" patterns)
    file(CONFIGURE OUTPUT "${counted}" CONTENT "${patterns}" @ONLY)
    if(kind STREQUAL "TEST")
      target_compile_options(${target} PRIVATE -fprofile-update=atomic)
    else()
      target_compile_options(${target} PRIVATE -O1)
    endif()
    target_compile_options(${target} PRIVATE -fprofile-instr-generate -fcoverage-mapping "-fprofile-list=${counted}")
    target_link_options(${target} PRIVATE -fprofile-instr-generate)
  else()
    target_compile_options(${target} PRIVATE --coverage -fprofile-update=atomic)
    target_link_options(${target} PRIVATE --coverage)
  endif()
endfunction()

# sonavit_configure_target(<target> [TEST])
function(sonavit_configure_target target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "TEST" "" "")
  set(kind LIBRARY)
  if(arg_TEST)
    set(kind TEST)
  endif()

  target_compile_features(${target} PUBLIC cxx_std_17)
  set_target_properties(
    ${target}
    PROPERTIES CXX_EXTENSIONS OFF
               CXX_VISIBILITY_PRESET hidden
               VISIBILITY_INLINES_HIDDEN ON
               POSITION_INDEPENDENT_CODE ON
  )
  sonavit_set_warnings(${target} ${kind})
  sonavit_instrument(${target} ${kind})
  if(NOT MSVC)
    # Levels and percents are rounded after each step, even if the processor could do two steps as one.
    target_compile_options(${target} PRIVATE -ffp-contract=off)
    if(SONAVIT_X87)
      # The x87 unit keeps more digits than a float has.
      target_compile_options(${target} PRIVATE -msse2 -mfpmath=sse)
    endif()
  endif()

  if(MINGW)
    # Exceptions pass from one library into another, so all of them share one C++ runtime.
    target_link_options(${target} PRIVATE -shared-libgcc)
  endif()
endfunction()

# sonavit_compile_quickly(<target>): without optimisation in a debug build with sanitizers. Optimising what they add takes
# three times as long as the compilation without, and no test waits for this code.
function(sonavit_compile_quickly target)
  if(SONAVIT_SANITIZE AND CMAKE_BUILD_TYPE STREQUAL "Debug")
    target_compile_options(${target} PRIVATE -O0)
  endif()
endfunction()

# sonavit_bind_own_symbols(<target>): calls within a shared library go straight to the library's own functions. Only the
# allocation operators of the standard library are meant to be replaced, and they are no functions of ours. Variables stay
# as they are, so that there is one of each in a process.
function(sonavit_bind_own_symbols target)
  if(NOT BUILD_SHARED_LIBS OR WIN32 OR APPLE)
    return()
  endif()
  include(CheckCXXCompilerFlag)
  include(CheckLinkerFlag)
  check_cxx_compiler_flag(-fno-semantic-interposition SONAVIT_HAS_NO_SEMANTIC_INTERPOSITION)
  check_linker_flag(CXX -Wl,-Bsymbolic-functions SONAVIT_HAS_BSYMBOLIC_FUNCTIONS)
  if(SONAVIT_HAS_NO_SEMANTIC_INTERPOSITION)
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
  endif()
  if(SONAVIT_HAS_BSYMBOLIC_FUNCTIONS)
    target_link_options(${target} PRIVATE -Wl,-Bsymbolic-functions)
  endif()
endfunction()

# A library of the product: version, names of its files, and the definition that decides its exports.
function(sonavit_configure_library target buildingDefinition)
  sonavit_configure_target(${target})
  sonavit_bind_own_symbols(${target})
  set_target_properties(
    ${target}
    PROPERTIES VERSION "${PROJECT_VERSION}"
               SOVERSION "${PROJECT_VERSION_MAJOR}"
               PREFIX "lib"
               IMPORT_PREFIX "lib"
               INSTALL_RPATH "\$ORIGIN"
  )
  if(BUILD_SHARED_LIBS)
    target_compile_definitions(${target} PUBLIC SONAVIT_SHARED PRIVATE ${buildingDefinition})
  endif()
endfunction()

# sonavit_find_runtime_library(<result> <name>...): the first of these files that the compiler has
function(sonavit_find_runtime_library result)
  foreach(name IN LISTS ARGN)
    execute_process(
      COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
      OUTPUT_VARIABLE file
      OUTPUT_STRIP_TRAILING_WHITESPACE
    )
    if(EXISTS "${file}") # a name that the compiler does not know comes back as it is
      file(REAL_PATH "${file}" file)
      set(${result} "${file}" PARENT_SCOPE)
      return()
    endif()
  endforeach()
  list(JOIN ARGN " or " names)
  message(FATAL_ERROR "${CMAKE_CXX_COMPILER} has no ${names}")
endfunction()

# The files of mingw's C++ runtime, which programs need in their folder; empty for other compilers. libgcc is named
# after the way in which it unwinds the stack, which differs between 64-bit and 32-bit compilers.
function(sonavit_compiler_runtime result)
  set(files)
  if(MINGW)
    sonavit_find_runtime_library(standardLibrary libstdc++-6.dll)
    sonavit_find_runtime_library(unwinding libgcc_s_seh-1.dll libgcc_s_dw2-1.dll libgcc_s_sjlj-1.dll)
    sonavit_find_runtime_library(threads libwinpthread-1.dll)
    set(files "${standardLibrary}" "${unwinding}" "${threads}")
  endif()
  set(${result} ${files} PARENT_SCOPE)
endfunction()

function(sonavit_copy_compiler_runtime folder)
  sonavit_compiler_runtime(files)
  if(files)
    file(COPY ${files} DESTINATION "${folder}")
  endif()
endfunction()

# sonavit_has_own_platform_include(<result> <source>): whether the source includes the platform's headers in an order of its
# own, so that no header may come before its first one.
function(sonavit_has_own_platform_include result source)
  set(own)
  if(EXISTS "${source}") # not yet, if the build makes it
    file(STRINGS "${source}" own LIMIT_COUNT 1 REGEX "\"platform/(windows/defineidentifiers|portable/coreaudio)\\.h\"")
  endif()
  set(${result} "${own}" PARENT_SCOPE)
endfunction()

# sonavit_precompile(<target> PRIVATE <header>... | REUSE_FROM <target>): reads the headers once for all sources of the
# target, except those that include the platform's headers in an order of their own.
function(sonavit_precompile target)
  target_precompile_headers(${target} ${ARGN})
  get_target_property(sources ${target} SOURCES)
  foreach(source IN LISTS sources)
    cmake_path(ABSOLUTE_PATH source)
    sonavit_has_own_platform_include(own "${source}")
    if(own)
      set_source_files_properties(
        "${source}" TARGET_DIRECTORY ${target} PROPERTIES SKIP_PRECOMPILE_HEADERS ON
      )
    endif()
  endforeach()
endfunction()

# Precompiled headers for the products: those of the standard library if SONAVIT_PRECOMPILE is STANDARD, and the project's
# own as well if it is ALL. A build of another preset does without the latter and finds missing includes of them.
function(sonavit_precompile_products)
  set(standard <algorithm> <atomic> <map> <memory> <mutex> <string> <vector>)
  set(object <libSonavit/libsonavit.h>)
  set(client <sonavit/client.h>)
  set(clientPlatform "${PROJECT_SOURCE_DIR}/platform/coreaudio.h"
                     "${PROJECT_SOURCE_DIR}/modules/src/windows/common/COM/comptr.h"
  )
  set(machine <simulator/machine/machine.h>)
  set(json <nlohmann/json.hpp>) # dear to load, too: few sources of many need it
  if(SONAVIT_PRECOMPILE STREQUAL "STANDARD")
    set(object)
    set(client)
    set(clientPlatform)
    set(machine)
    set(json)
  endif()
  sonavit_precompile(Sonavit PRIVATE ${standard} ${object})
  if(TARGET SonavitClientObjects)
    sonavit_precompile(SonavitClientObjects PRIVATE ${standard} <optional> <variant> ${clientPlatform} ${client})
    sonavit_precompile(SonavitModel PRIVATE ${standard} <optional> <variant> ${object} ${client})
  endif()
  if(TARGET SonavitSimulator)
    sonavit_precompile(SonavitMachine PRIVATE ${standard} ${machine})
    sonavit_precompile(SonavitSimulator PRIVATE ${standard} ${machine})
  endif()
  if(TARGET sonavit-commands)
    sonavit_precompile(sonavit-commands PRIVATE ${standard} ${object} ${client} ${machine} ${json})
  endif()
endfunction()
