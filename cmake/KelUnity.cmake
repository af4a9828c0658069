option(KEL_UNITY_BUILD "Compile the sources of a folder as one file, or in batches, which is faster" OFF)

# kel_unity_by_folder(<target>)
#
# With KEL_UNITY_BUILD, compiles the sources of each folder as one file. That takes a third to a half of
# the time, and finds two things of one name in a folder. A build without it compiles every file alone, and
# finds what a file does not include.
#
# Some sources are left out: those of the folders platform and system and those for Windows, because the
# headers of the system define macros, and JException.cpp, because it and JString.cpp seem to call each other
# for ever where they are analyzed as one. CMake leaves out every source that has definitions of its own.
function(kel_unity_by_folder target)
  if(NOT KEL_UNITY_BUILD)
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
  set_target_properties(${target} PROPERTIES
    UNITY_BUILD ${KEL_UNITY_BUILD} UNITY_BUILD_BATCH_SIZE ${size})
endfunction()
