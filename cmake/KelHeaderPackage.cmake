# kel_header_package(<target> <folder> <header>)
#
# Makes an interface target for a package of headers that is installed for the building machine. The
# headers are the same for every system, but the folder around them also holds that machine's own
# system headers, so it must not become an include folder of a cross compiler. Only the package's
# folder is therefore linked into a folder of the build. The target exists only if <folder>/<header>
# is found.
function(kel_header_package target folder header)
  if(TARGET ${target})
    return()
  endif()
  string(REPLACE "::" "_" name ${target})
  find_path(KEL_${name}_HEADERS ${folder}/${header} PATHS /usr/include /usr/local/include
    NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  mark_as_advanced(KEL_${name}_HEADERS)
  if(NOT KEL_${name}_HEADERS)
    return()
  endif()
  set(includes ${PROJECT_BINARY_DIR}/headers/${name})
  file(MAKE_DIRECTORY ${includes})
  if(NOT EXISTS ${includes}/${folder})
    file(CREATE_LINK ${KEL_${name}_HEADERS}/${folder} ${includes}/${folder} SYMBOLIC)
  endif()
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} INTERFACE ${includes})
endfunction()
