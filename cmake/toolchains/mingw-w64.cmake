# Debian's mingw-w64 for the processor in kel_mingw. Its variant with POSIX threads is used, because only
# there does the standard library have threads and mutexes. Test programs run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${kel_mingw}-gcc-posix)
set(CMAKE_CXX_COMPILER ${kel_mingw}-g++-posix)
set(CMAKE_RC_COMPILER ${kel_mingw}-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${kel_mingw})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../../scripts/winerun.sh)
