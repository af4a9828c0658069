# kel_leave_out_other_systems(<list>)
#
# Takes out of a list of source files those that are for another system: files are named Posix... and
# Windows... for the system that they need; all others are for both.
function(kel_leave_out_other_systems list)
  set(sources ${${list}})
  if(WIN32)
    list(FILTER sources EXCLUDE REGEX "/Posix[^/]*$")
  else()
    list(FILTER sources EXCLUDE REGEX "/Windows[^/]*$")
  endif()
  set(${list} ${sources} PARENT_SCOPE)
endfunction()
