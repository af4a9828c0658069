# Builds for 32-bit Linux on a 64-bit machine with Debian's g++-multilib. Programs run directly.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_FLAGS_INIT "-m32")
set(CMAKE_CXX_FLAGS_INIT "-m32 -msse2 -mfpmath=sse") # the same arithmetic as on x86-64
