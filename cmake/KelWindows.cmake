# Only the build for Windows needs these functions. They have no effect elsewhere.

# kel_version_resource(<target> <file name> <VFT_DLL|VFT_APP> <description>)
#
# Gives the target's binary a version resource, made from the version of the library.
function(kel_version_resource target KEL_RC_FILE KEL_RC_TYPE KEL_RC_DESCRIPTION)
  if(NOT WIN32)
    return()
  endif()
  cmake_path(GET KEL_RC_FILE STEM KEL_RC_NAME)
  set(resource ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
  configure_file(${PROJECT_SOURCE_DIR}/src/platform/library/kel.rc.in ${resource} @ONLY)
  target_sources(${target} PRIVATE ${resource})
endfunction()

# kel_name_dll(<target> <name>)
#
# Names a library <name>.dll, without a prefix, and its import library by the custom of the tool
# chain: lib<name>.dll.a or <name>.lib.
function(kel_name_dll target name)
  set_target_properties(${target} PROPERTIES OUTPUT_NAME ${name} PREFIX "")
endfunction()

# kel_add_runtime(<target>)
#
# Puts the run-time libraries of mingw beside the programs and KEL.dll when the target is built,
# because Windows looks for them there. KEL_RUNTIME_FILES names them; they must be shipped with KEL.dll.
#
# An exception that leaves KEL.dll is caught by the host's code, so both must use the one shared
# libgcc. It needs the thread library, so that is shared as well. Every binary contains the C++
# library by itself: nothing of it crosses the boundary.
#
# KEL_LIBGCC is the name of that libgcc, which says how it handles exceptions.
if(MINGW)
  set(KEL_LIBGCC libgcc_s_dw2-1.dll)
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    set(KEL_LIBGCC libgcc_s_seh-1.dll)
  endif()
  set(KEL_RUNTIME_FILES)
  foreach(name IN ITEMS ${KEL_LIBGCC} libwinpthread-1.dll)
    execute_process(
      COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
      OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    if(NOT EXISTS ${file})
      message(FATAL_ERROR "The compiler does not know the path of ${name}.")
    endif()
    cmake_path(NORMAL_PATH file)
    list(APPEND KEL_RUNTIME_FILES ${file})
  endforeach()
  add_link_options(-static-libstdc++ -shared-libgcc)
endif()
function(kel_add_runtime target)
  if(MINGW)
    add_custom_command(TARGET ${target} POST_BUILD
      COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}
      COMMAND ${CMAKE_COMMAND} -E copy_if_different ${KEL_RUNTIME_FILES} ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}
      VERBATIM)
  endif()
endfunction()
