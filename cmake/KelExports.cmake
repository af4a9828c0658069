# kel_make_export_lists(<table> <folder>)
#
# Makes the lists of exported functions that linkers take, from one table: kel.map for Linux,
# kel.def and kel64.def for mingw, and kel_msvc.def for Microsoft's compiler. Each row of the table holds an
# ordinal, a declaration, Microsoft's name and the standard-call name; "#" begins a comment.
function(kel_make_export_lists table folder)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${table})
  file(STRINGS ${table} rows REGEX "^ *[^# ]")
  set(globals)
  set(standard_call)
  set(plain)
  set(microsoft)
  set(last 0)
  foreach(row IN LISTS rows)
    if(NOT row MATCHES "^ *([0-9]+) [|] ([^|]+) [|] ([^| ]+) [|] ([^| ]+)$")
      message(FATAL_ERROR "${table}: not ordinal | declaration | name | name:\n${row}")
    endif()
    set(ordinal ${CMAKE_MATCH_1})
    if(NOT ordinal GREATER last)
      message(FATAL_ERROR "${table}: ordinal ${ordinal} does not ascend")
    endif()
    set(last ${ordinal})
    string(APPEND microsoft "    ${CMAKE_MATCH_3} @${ordinal}\n")
    string(APPEND standard_call "    ${CMAKE_MATCH_4} @${ordinal}\n")
    # In 64 bits and on Linux the same function has no decoration. On Linux the type FILE has another
    # tag, too.
    string(REGEX REPLACE "@[0-9]+$" "" name ${CMAKE_MATCH_4})
    string(APPEND plain "    ${name} @${ordinal}\n")
    string(REPLACE "6_iobuf" "8_IO_FILE" name ${name})
    string(APPEND globals "    ${name};\n")
  endforeach()
  file(CONFIGURE OUTPUT ${folder}/kel.map @ONLY
    CONTENT "{\n  global:\n@globals@  local:\n    *;\n};\n")
  file(CONFIGURE OUTPUT ${folder}/kel.def CONTENT "LIBRARY KEL.dll\nEXPORTS\n@standard_call@" @ONLY)
  file(CONFIGURE OUTPUT ${folder}/kel64.def CONTENT "LIBRARY KEL.dll\nEXPORTS\n@plain@" @ONLY)
  file(CONFIGURE OUTPUT ${folder}/kel_msvc.def CONTENT "LIBRARY KEL.dll\nEXPORTS\n@microsoft@" @ONLY)
endfunction()

# kel_limit_exports(<target> <folder>)
#
# Makes a shared library export only the functions of the lists in the folder. Hidden visibility
# alone would also export the type information and inline functions of the public classes and of the
# standard library. They could be mixed with those of other libraries in a host.
function(kel_limit_exports target folder)
  # Each compiler has its own names for the same functions at the same ordinals.
  if(MSVC)
    target_sources(${target} PRIVATE ${folder}/kel_msvc.def)
  elseif(WIN32 AND CMAKE_SIZEOF_VOID_P EQUAL 8)
    target_sources(${target} PRIVATE ${folder}/kel64.def)
  elseif(WIN32)
    target_sources(${target} PRIVATE ${folder}/kel.def)
  elseif(NOT APPLE)
    target_link_options(${target} PRIVATE LINKER:--version-script=${folder}/kel.map)
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${folder}/kel.map)
  endif()
endfunction()
