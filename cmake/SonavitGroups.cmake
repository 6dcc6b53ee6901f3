# Compiling in groups: sources of a target that declare no equal names at file level are compiled as one. The headers and
# templates that they share are then compiled once for the group, which about halves the time. A build of another preset
# compiles each source by itself and finds missing includes.

# Beyond these sizes a group takes as long as its parts; sources of tests, which are not optimized, gain for longer.
set(SONAVIT_GROUP_LIMIT 10 CACHE STRING "How many sources of a product a group has at most")
set(SONAVIT_TEST_GROUP_LIMIT 20 CACHE STRING "How many sources of a test a group has at most")
mark_as_advanced(SONAVIT_GROUP_LIMIT SONAVIT_TEST_GROUP_LIMIT)

# sonavit_file_level_names(<result> <source>): the names that the source declares at the left edge, roughly: a word too
# many only makes groups smaller. A source with macros of its own gets the name "*", which no group takes.
function(sonavit_file_level_names result source)
  file(READ "${source}" text)
  string(REGEX REPLACE "[][;]" "," text "${text}") # these have a meaning in CMake's lists
  set(names)
  if(text MATCHES "\n# *define ")
    set(names "*")
  endif()
  string(REGEX MATCHALL "\n[A-Za-z][^\n]*" lines "\n${text}")
  foreach(line IN LISTS lines)
    while(line MATCHES "<[^<>]*>") # template arguments, innermost first
      string(REPLACE "${CMAKE_MATCH_0}" "" line "${line}")
    endwhile()
    if(line MATCHES "^\n(TEST|TYPED_TEST|INSTANTIATE_|static_assert|namespace|using namespace|using [^=]*$|void PrintTo)")
      continue()
    elseif(line MATCHES "^\n[^(=\"]*(::~?[A-Za-z0-9_]+ *[(]|operator[^A-Za-z0-9_])") # of a class, or of its types
      continue()
    elseif(line MATCHES "^\n(class|struct|enum class|enum|union|using) +([A-Za-z0-9_]+)")
      list(APPEND names "${CMAKE_MATCH_2}")
    elseif(line MATCHES "([A-Za-z0-9_]+) *[(={,]")
      list(APPEND names "${CMAKE_MATCH_1}")
    endif()
  endforeach()
  set(${result} ${names} PARENT_SCOPE)
endfunction()

# sonavit_compile_in_groups(<target> <limit> [EXCEPT <folder>...]): at most <limit> sources in a group; the sources in
# these folders stay alone.
function(sonavit_compile_in_groups target limit)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "" "EXCEPT")
  get_target_property(sources ${target} SOURCES)
  set(groups)
  foreach(source IN LISTS sources)
    cmake_path(ABSOLUTE_PATH source)
    cmake_path(GET source EXTENSION LAST_ONLY extension)
    sonavit_has_own_platform_include(alone "${source}")
    if(alone OR NOT extension STREQUAL ".cpp")
      continue()
    endif()
    # Properties of a source hold in all targets of a folder: what two of them share stays alone in both.
    get_source_file_property(group "${source}" TARGET_DIRECTORY ${target} UNITY_GROUP)
    if(group)
      set_source_files_properties("${source}" TARGET_DIRECTORY ${target} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
      continue()
    endif()
    sonavit_file_level_names(names "${source}")
    if("*" IN_LIST names)
      continue()
    endif()
    cmake_path(GET source PARENT_PATH folder)
    cmake_path(GET folder FILENAME folderName)
    if(folderName IN_LIST arg_EXCEPT)
      continue()
    endif()

    # The first group that has room and none of these names.
    set(number 0)
    while(TRUE)
      set(group "group${number}")
      list(LENGTH ${group}_sources size)
      set(clash FALSE)
      foreach(name IN LISTS names)
        if(name IN_LIST ${group}_names)
          set(clash TRUE)
          break()
        endif()
      endforeach()
      if(size LESS limit AND NOT clash)
        break()
      endif()
      math(EXPR number "${number} + 1")
    endwhile()
    list(APPEND ${group}_sources "${source}")
    list(APPEND ${group}_names ${names})
    set_source_files_properties("${source}" TARGET_DIRECTORY ${target} PROPERTIES UNITY_GROUP "${group}")
  endforeach()

  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  # Two warnings judge a group as if it were one source: a local name that another source of the group has at file level,
  # and (gcc) types of a header with members of internal linkage. A build without groups has both.
  target_compile_options(${target} PRIVATE -Wno-shadow)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -Wno-subobject-linkage)
  endif()
endfunction()

# The libraries of the product. An executable may replace single functions of the simulated platform by its own, which
# takes an object file for each.
function(sonavit_compile_products_in_groups)
  foreach(target IN ITEMS SonavitCommon Sonavit SonavitClientObjects SonavitModel SonavitMachine SonavitSimulator sonavit-commands)
    if(TARGET ${target})
      sonavit_compile_in_groups(${target} ${SONAVIT_GROUP_LIMIT} EXCEPT portable windows)
    endif()
  endforeach()
endfunction()
