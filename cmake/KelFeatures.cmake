# kel_feature(<variable> <default> <description> [package...])
#
# Declares a switch with three positions. AUTO builds the feature if all its packages are installed,
# and otherwise prints that it does not. ON requires the packages. OFF leaves the feature out. After
# the call <variable> is ON or OFF in the calling scope; the cache keeps the requested position.
function(kel_feature variable default description)
  set(${variable} ${default} CACHE STRING "${description}: AUTO, ON or OFF")
  set_property(CACHE ${variable} PROPERTY STRINGS AUTO ON OFF)

  set(answer ON)
  if("${${variable}}" STREQUAL "AUTO")
    foreach(package IN LISTS ARGN)
      find_package(${package} QUIET)
      if(NOT ${package}_FOUND)
        message(STATUS "${variable} is off: ${package} is not installed")
        set(answer OFF)
      endif()
    endforeach()
  elseif(${variable})
    foreach(package IN LISTS ARGN)
      find_package(${package} REQUIRED)
    endforeach()
  else()
    set(answer OFF)
  endif()
  set(${variable} ${answer} PARENT_SCOPE)
endfunction()
