# kel_leave_out_other_systems(<list>)
#
# Removes the source files for another system from a list. Files that need one system are named
# Posix... or Windows...; all others are for both systems.
function(kel_leave_out_other_systems list)
  set(sources ${${list}})
  if(WIN32)
    list(FILTER sources EXCLUDE REGEX "/Posix[^/]*$")
  else()
    list(FILTER sources EXCLUDE REGEX "/Windows[^/]*$")
  endif()
  set(${list} ${sources} PARENT_SCOPE)
endfunction()
