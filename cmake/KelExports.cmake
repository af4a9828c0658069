# kel_limit_exports(<target> <list>)
#
# Makes a shared library export the functions of the list and nothing else. Each line of the list
# holds an ordinal and a mangled name; "#" begins a comment. Hidden visibility alone would still
# let the type information and inline functions of the public classes and of the standard library
# out, where they could be mixed with those of other libraries in a host.
function(kel_limit_exports target list)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
  file(STRINGS ${list} rows REGEX "^ *[0-9]+ +[A-Za-z_]")
  set(globals)
  foreach(row IN LISTS rows)
    string(REGEX REPLACE "^ *[0-9]+ +([A-Za-z0-9_]+).*$" "\\1" name ${row})
    string(APPEND globals "    ${name};\n")
  endforeach()
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
  file(CONFIGURE OUTPUT ${script} CONTENT "{\n  global:\n@globals@  local:\n    *;\n};\n" @ONLY)
  target_link_options(${target} PRIVATE LINKER:--version-script=${script})
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${script})
endfunction()
