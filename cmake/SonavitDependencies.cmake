# The libraries that the program, the simulator and the tests use. The object model's needs none, and
# the client layer only while it is compiled.

find_package(Threads REQUIRED)

# Header-only libraries. A cross build must not see the host's include folder as a whole, so it gets a folder
# with links to just these headers.
function(sonavit_find_header_library package target header)
  if(TARGET ${target})
    return()
  endif()
  find_package(${package} QUIET)
  if(TARGET ${target})
    return()
  endif()

  get_filename_component(folder "${header}" DIRECTORY)
  find_path(SONAVIT_${package}_FOLDER "${header}" NO_CMAKE_FIND_ROOT_PATH PATHS /usr/include /usr/local/include)
  if(NOT SONAVIT_${package}_FOLDER)
    message(FATAL_ERROR "${package} is missing (${header})")
  endif()
  mark_as_advanced(SONAVIT_${package}_FOLDER)

  set(links "${CMAKE_BINARY_DIR}/include")
  file(MAKE_DIRECTORY "${links}")
  file(CREATE_LINK "${SONAVIT_${package}_FOLDER}/${folder}" "${links}/${folder}" SYMBOLIC COPY_ON_ERROR)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE "${links}")
endfunction()

if(SONAVIT_BUILD_SIMULATOR OR SONAVIT_BUILD_CLIENT)
  sonavit_find_header_library(nlohmann_json nlohmann_json::nlohmann_json nlohmann/json.hpp)
endif()
if(SONAVIT_BUILD_PROGRAM)
  sonavit_find_header_library(CLI11 CLI11::CLI11 CLI/CLI.hpp)
endif()

# GoogleTest: a package where there is one for this compiler, otherwise built from its sources with our own flags
# (a cross build has no package; a sanitizer needs the containers on both sides instrumented alike).
function(sonavit_find_googletest)
  if(TARGET GTest::gmock)
    return()
  endif()
  set(SONAVIT_GOOGLETEST_SOURCES /usr/src/googletest CACHE PATH "Sources of GoogleTest")
  if(NOT CMAKE_CROSSCOMPILING AND NOT SONAVIT_SANITIZE)
    find_package(GTest QUIET GLOBAL)
  endif()
  if(NOT TARGET GTest::gmock AND EXISTS "${SONAVIT_GOOGLETEST_SOURCES}/CMakeLists.txt")
    set(BUILD_SHARED_LIBS OFF)
    set(INSTALL_GTEST OFF)
    add_subdirectory("${SONAVIT_GOOGLETEST_SOURCES}" "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
    foreach(library IN ITEMS gtest gmock)
      sonavit_instrument(${library} TEST)
      if(NOT MSVC)
        target_compile_options(${library} PRIVATE -O0) # compiled in half the time, and the tests do not notice
      endif()
    endforeach()
  elseif(NOT TARGET GTest::gmock)
    find_package(GTest REQUIRED GLOBAL)
  endif()
endfunction()
