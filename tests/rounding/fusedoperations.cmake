# Fails if one of OBJECTS contains an operation that multiplies and adds with one rounding, or if CONTROL contains none.
#
#   cmake -DOBJDUMP=<program> -DCONTROL=<file> "-DOBJECTS=<file>;<file>" -P fusedoperations.cmake

function(find_fused_operations object result)
  execute_process(COMMAND "${OBJDUMP}" -d "${object}" OUTPUT_VARIABLE code COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "vfn?m(add|sub)[0-9a-z]+" found "${code}")
  set(${result} "${found}" PARENT_SCOPE)
endfunction()

find_fused_operations("${CONTROL}" inControl)
if(NOT inControl)
  message(FATAL_ERROR "${CONTROL} has no fused operation: the compiler is not allowed to make one")
endif()

if(NOT OBJECTS)
  message(FATAL_ERROR "There is no object to look at")
endif()
foreach(object IN LISTS OBJECTS)
  find_fused_operations("${object}" fused)
  if(fused)
    message(FATAL_ERROR "${object} has fused operations: ${fused}")
  endif()
endforeach()
