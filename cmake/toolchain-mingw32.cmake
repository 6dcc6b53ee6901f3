# Windows programs (32-bit, x86) built with mingw-w64, run by Wine where a 32-bit one is installed.
set(sonavitProcessor i686)
include("${CMAKE_CURRENT_LIST_DIR}/toolchain-mingw.cmake")
