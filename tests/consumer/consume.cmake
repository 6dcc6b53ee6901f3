# Configures, builds and runs one consumer project, from nothing.
cmake_minimum_required(VERSION 3.25)

function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(REMOVE_RECURSE "${build}")
set(arguments ${options})
if(install)
  run(${CMAKE_COMMAND} --install "${install}" --prefix "${build}/prefix")
  list(APPEND arguments "-DCMAKE_PREFIX_PATH=${build}/prefix")
endif()

cmake_host_system_information(RESULT cores QUERY NUMBER_OF_LOGICAL_CORES)
run(${CMAKE_COMMAND} -S "${project}" -B "${build}" -G "${generator}" "-DCMAKE_CXX_COMPILER=${compiler}"
    -DCMAKE_BUILD_TYPE=Debug ${arguments})
if(configureOnly)
  return()
endif()
run(${CMAKE_COMMAND} --build "${build}" --parallel ${cores})
# Without a person: what asks for Enter reads the end of its input.
execute_process(
  COMMAND "${build}/${program}" WORKING_DIRECTORY "${build}" INPUT_FILE /dev/null COMMAND_ERROR_IS_FATAL ANY
)

if(EXISTS "${build}/prefix/bin/sonavit")
  if(NOT EXISTS "${build}/prefix/share/sonavit/machines/desktop.json")
    message(FATAL_ERROR "The machines are not installed")
  endif()
  run("${build}/prefix/bin/sonavit" list)
endif()
