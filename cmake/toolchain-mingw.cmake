# Windows programs (x86-64, unless another toolchain file chooses a processor) built with mingw-w64, run by Wine.
if(NOT DEFINED sonavitProcessor)
  set(sonavitProcessor x86_64)
endif()
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ${sonavitProcessor})

# The posix flavour: std::thread and std::mutex.
set(CMAKE_C_COMPILER ${sonavitProcessor}-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER ${sonavitProcessor}-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER ${sonavitProcessor}-w64-mingw32-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${sonavitProcessor}-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# A Wine prefix of the build folder's own.
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/wine/emulator;${CMAKE_BINARY_DIR}/wine")
