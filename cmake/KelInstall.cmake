# Puts headers, library, CMake package, kel.pc and the tool under the prefix for cmake --install.
# Both packages find their files relative to themselves, so the installed tree can be moved.
#
# The components are named after the Debian packages that contain them: libkel<major>, libkel-dev,
# kel and kel-doc. Debian keeps the libraries of each processor in a folder of their own, so the
# files there are installed by rules of their own. Files of the component "tree" are those that only
# the installed tree and the archives contain.
include(CMakePackageConfigHelpers)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/kel DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        COMPONENT libkel-dev FILES_MATCHING PATTERN *.h PATTERN *.hpp)

write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/kelConfigVersion.cmake COMPATIBILITY SameMajorVersion)

# A host of a static library needs to know that it is one.
set(kel_pc_definitions)
if(NOT KEL_BUILD_SHARED)
  set(kel_pc_definitions " -DKEL_STATIC")
endif()

# kel_install_library(<folder> <export> <component> <development component> [EXCLUDE_FROM_ALL])
#
# Installs the library, the CMake package and kel.pc into the folder below the prefix. <export> is
# the name of a set of exported targets, different in each call.
function(kel_install_library folder export component development)
  install(TARGETS kel EXPORT ${export}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${component} ${ARGN}
    LIBRARY DESTINATION ${folder} COMPONENT ${component} NAMELINK_COMPONENT ${development} ${ARGN}
    ARCHIVE DESTINATION ${folder} COMPONENT ${development} ${ARGN})

  set(package ${folder}/cmake/kel)
  set(made ${PROJECT_BINARY_DIR}/${export})
  install(EXPORT ${export} FILE kelTargets.cmake NAMESPACE kel:: DESTINATION ${package}
    COMPONENT ${development} ${ARGN})
  configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/cmake/kelConfig.cmake.in ${made}/kelConfig.cmake
    INSTALL_DESTINATION ${package} NO_SET_AND_CHECK_MACRO)
  install(FILES ${made}/kelConfig.cmake ${PROJECT_BINARY_DIR}/kelConfigVersion.cmake
    DESTINATION ${package} COMPONENT ${development} ${ARGN})

  if(NOT WIN32)
    # This is the path from the folder of kel.pc back to the prefix.
    file(RELATIVE_PATH kel_pc_up /prefix/${folder}/pkgconfig /prefix)
    string(REGEX REPLACE "/$" "" kel_pc_up ${kel_pc_up})
    set(kel_pc_libdir ${folder})
    configure_file(${PROJECT_SOURCE_DIR}/cmake/kel.pc.in ${made}/kel.pc @ONLY)
    install(FILES ${made}/kel.pc DESTINATION ${folder}/pkgconfig
      COMPONENT ${development} ${ARGN})
  endif()
endfunction()
kel_install_library(${CMAKE_INSTALL_LIBDIR} kelTargets tree tree)

# Windows looks for a program's libraries beside the program.
if(MINGW)
  install(FILES ${KEL_RUNTIME_FILES} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tree)
endif()

if(TARGET kel_tool)
  install(TARGETS kel_tool DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT kel)
endif()
