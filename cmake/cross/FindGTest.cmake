# Finds GoogleTest for a cross build. No system ships it built for another one, so it is built here
# from the sources of the Debian package.
set(KEL_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "Sources of GoogleTest for cross builds")
mark_as_advanced(KEL_GOOGLETEST_SOURCE)

if(NOT TARGET GTest::gtest AND EXISTS ${KEL_GOOGLETEST_SOURCE}/CMakeLists.txt)
  block()
    set(BUILD_GMOCK OFF)
    set(INSTALL_GTEST OFF)
    set(BUILD_SHARED_LIBS OFF)
    set(CMAKE_COMPILE_WARNING_AS_ERROR OFF)
    set(CMAKE_WARN_DEPRECATED OFF)
    if(MSVC)
      set(gtest_disable_pthreads ON) # its probe for them is compiled but not linked, so it succeeds
    endif()
    add_subdirectory(
      ${KEL_GOOGLETEST_SOURCE} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
    if(MSVC)
      target_compile_definitions(gtest PUBLIC GTEST_HAS_SEH=0) # it needs Microsoft's static objects
    endif()
  endblock()
endif()
if(TARGET GTest::gtest)
  set(GTest_FOUND TRUE)
elseif(GTest_FIND_REQUIRED)
  message(FATAL_ERROR "${KEL_GOOGLETEST_SOURCE} does not contain GoogleTest (googletest).")
endif()
