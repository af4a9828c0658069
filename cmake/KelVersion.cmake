# The version of the library is defined in one place: include/kel/config.h.
#
# Sets KEL_VERSION to major.minor.patch, the same text that hosts see in KEL_VERSION_STRING.

set(kel_config_header ${CMAKE_CURRENT_LIST_DIR}/../include/kel/config.h)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${kel_config_header})

set(kel_version_numbers)
foreach(kel_level IN ITEMS MAJOR MINOR PATCH)
  file(STRINGS ${kel_config_header} kel_line REGEX "^#define KEL_VERSION_${kel_level} [0-9]+$")
  if(NOT kel_line)
    message(FATAL_ERROR "include/kel/config.h does not define KEL_VERSION_${kel_level}.")
  endif()
  string(REGEX REPLACE ".* " "" kel_number ${kel_line})
  list(APPEND kel_version_numbers ${kel_number})
endforeach()
list(JOIN kel_version_numbers . KEL_VERSION)

file(STRINGS ${kel_config_header} kel_line REGEX "^#define KEL_VERSION_STRING \"${KEL_VERSION}\"$")
if(NOT kel_line)
  message(FATAL_ERROR "KEL_VERSION_STRING in include/kel/config.h is not \"${KEL_VERSION}\".")
endif()
