# Which objects of the products register the end of a static object (cmake -DNM=… -DOBJECTS=<file with a list> -P). There is
# one, the shared enumerator, which ends with its module: all else is used by threads that run until the process ends, and
# by objects of the program that outlive the libraries.
file(STRINGS "${OBJECTS}" objects)
list(FILTER objects INCLUDE REGEX "\\.o$") # without precompiled headers
execute_process(
  COMMAND "${NM}" -A --undefined-only ${objects}
  OUTPUT_VARIABLE symbols
  COMMAND_ERROR_IS_FATAL ANY
)
string(REGEX MATCHALL "[^\n]+: +U __cxa_(thread_)?atexit[^\n]*" registrations "${symbols}")
set(others ${registrations})
list(FILTER others EXCLUDE REGEX "/sharedenumerator\\.cpp\\.o: +U __cxa_atexit$")
if(others)
  list(JOIN others "\n" others)
  message(FATAL_ERROR "Static objects that end with the process:\n${others}")
endif()
list(LENGTH registrations count)
if(NOT count EQUAL 1)
  message(FATAL_ERROR "The shared enumerator does not end with its module")
endif()
