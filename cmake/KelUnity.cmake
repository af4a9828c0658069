set(KEL_UNITY_BUILD OFF CACHE STRING
  "Compile the sources of a folder as one file, or in batches, which is faster: OFF, ON, or TESTS for tests alone")
set_property(CACHE KEL_UNITY_BUILD PROPERTY STRINGS OFF ON TESTS)

# kel_is_unity(<variable> <target>): whether the sources of a target are compiled together. The names of test
# programs end in _tests.
function(kel_is_unity variable target)
  set(result ${KEL_UNITY_BUILD})
  if(result STREQUAL "TESTS")
    string(REGEX MATCH "_tests$" result ${target})
  elseif(NOT result MATCHES "^(ON|OFF)$")
    message(FATAL_ERROR "KEL_UNITY_BUILD is ON, OFF or TESTS, not ${result}")
  endif()
  if(result)
    set(${variable} ON PARENT_SCOPE)
  else()
    set(${variable} OFF PARENT_SCOPE)
  endif()
endfunction()

# kel_unity_by_folder(<target>)
#
# With KEL_UNITY_BUILD, compiles the sources of each folder as one file. That takes a third to a half of
# the time, and finds two things of one name in a folder. Without it every file is compiled alone, which
# finds what a file does not include. With TESTS that holds for the library and the tool.
#
# Some sources are left out: those of the folders platform and system and those for Windows, because the
# headers of the system define macros, and JException.cpp, because clang-tidy reports a recursion between it
# and JString.cpp if it sees both in one file. The recursion is bounded: an exception's message begins as a
# string without text, which allocates nothing that could fail with another exception. CMake leaves out every
# source that has definitions of its own.
function(kel_unity_by_folder target)
  kel_is_unity(unity ${target})
  if(NOT unity)
    return()
  endif()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  get_target_property(sources ${target} SOURCES)
  list(FILTER sources INCLUDE REGEX "\\.cpp$")
  list(FILTER sources EXCLUDE REGEX "/(platform|system)/[^/]*$|/Windows[^/]*$|/JException\\.cpp$")
  foreach(source IN LISTS sources)
    cmake_path(GET source PARENT_PATH folder)
    string(MAKE_C_IDENTIFIER "${folder}" group)
    set_source_files_properties(${source} PROPERTIES UNITY_GROUP "${group}")
  endforeach()
endfunction()

# kel_unity_in_batches(<target> <size>)
#
# With KEL_UNITY_BUILD, compiles that many sources as one file, for a folder with so many that several
# processors should share it.
function(kel_unity_in_batches target size)
  kel_is_unity(unity ${target})
  set_target_properties(${target} PROPERTIES
    UNITY_BUILD ${unity} UNITY_BUILD_BATCH_SIZE ${size})
endfunction()
