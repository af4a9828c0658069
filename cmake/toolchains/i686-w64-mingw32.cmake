# Builds for 32-bit Windows with Debian's mingw-w64.
set(CMAKE_SYSTEM_PROCESSOR x86)
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse") # the same arithmetic as on x86-64
set(kel_mingw i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)
