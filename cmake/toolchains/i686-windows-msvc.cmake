# Builds for 32-bit Windows in Microsoft's ABI with clang-cl and lld-link, which take the command lines
# of Microsoft's compiler and linker. Nothing of Microsoft's is needed: scripts/msvc-runtime.sh makes the
# run-time from Debian's packages, in the cache folder. Test programs run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86)
set(CMAKE_C_COMPILER clang-cl-14)
set(CMAKE_CXX_COMPILER clang-cl-14)
set(CMAKE_C_COMPILER_TARGET i686-pc-windows-msvc)
set(CMAKE_CXX_COMPILER_TARGET i686-pc-windows-msvc)
set(CMAKE_LINKER lld-link-14 CACHE FILEPATH "")
set(CMAKE_AR llvm-lib-14 CACHE FILEPATH "")
set(CMAKE_MT llvm-mt-14 CACHE FILEPATH "")
set(CMAKE_RC_COMPILER llvm-rc-14)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY) # a program could be linked only with the run-time

set(_cache $ENV{KEL_CACHE})
if(NOT _cache)
  set(_cache ${CMAKE_CURRENT_LIST_DIR}/../../build/cache)
endif()
cmake_path(ABSOLUTE_PATH _cache NORMALIZE)
set(_libraries ${_cache}/msvc-runtime/lib)
cmake_path(SET _here NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../msvc-runtime)

# mingw-w64's headers declare the C library and the system. They ask for the version of GNU's compiler.
set(_system /usr/share/mingw-w64/include)
set(_flags "/X /Zl -D_UCRT -D_X86_ -D_ALLOCA_S_MARKER_SIZE=8 /clang:-fgnuc-version=9.1")
# clang 14 lets what a handler caught share its place on the stack with other variables of the function,
# although both are in use when handlers are nested. So no variables share a place.
string(APPEND _flags " -mllvm -no-stack-coloring")
# The same arithmetic as on x86-64. Wine calls with a stack that is aligned to 4 bytes only.
string(APPEND _flags " -msse2 /clang:-mfpmath=sse /clang:-mstackrealign -Wno-unused-command-line-argument")
set(CMAKE_C_FLAGS_INIT "${_flags} -imsvc ${_system}")
set(CMAKE_CXX_FLAGS_INIT "${_flags} /EHsc /GR /FI${_here}/Locale.h -D_LIBCPP_NO_VCRUNTIME \
-D_LIBCPP_DISABLE_VISIBILITY_ANNOTATIONS -imsvc /usr/lib/llvm-14/include/c++/v1 -imsvc ${_system}")
set(CMAKE_RC_FLAGS_INIT "-I ${_system}")

set(_link "/nodefaultlib /libpath:${_libraries}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${_link} dll_entry.lib")
# The stack that the tests of depth have elsewhere, and room for their trees.
set(CMAKE_EXE_LINKER_FLAGS_INIT "${_link} /stack:2097152 /largeaddressaware program_entry.lib")
set(_standard "runtime.lib libcxx.lib vcruntime140.lib ucrtbase.lib ntdll.lib kernel32.lib user32.lib \
shell32.lib advapi32.lib")
set(CMAKE_CXX_STANDARD_LIBRARIES "${_standard}" CACHE STRING "")
set(CMAKE_C_STANDARD_LIBRARIES "${_standard}" CACHE STRING "")

set(CMAKE_FIND_ROOT_PATH ${_libraries})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../../scripts/winerun.sh)
