# Puts headers, library, CMake package, kel.pc and the tool under the prefix for cmake --install.
# Both packages find their files relative to themselves, so the installed tree can be moved.
include(CMakePackageConfigHelpers)

set(kel_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/kel)

install(TARGETS kel EXPORT kelTargets)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/kel DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        FILES_MATCHING PATTERN *.h)
install(EXPORT kelTargets NAMESPACE kel:: DESTINATION ${kel_package_dir})

configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/kelConfig.cmake.in ${PROJECT_BINARY_DIR}/kelConfig.cmake
  INSTALL_DESTINATION ${kel_package_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/kelConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kelConfig.cmake ${PROJECT_BINARY_DIR}/kelConfigVersion.cmake
        DESTINATION ${kel_package_dir})

# Windows looks for a program's libraries beside the program.
if(MINGW)
  install(FILES ${KEL_RUNTIME_FILES} DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

if(NOT WIN32)
  # This is the path from the folder of kel.pc back to the prefix.
  set(kel_pc_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
  file(RELATIVE_PATH kel_pc_up /prefix/${kel_pc_dir} /prefix)
  string(REGEX REPLACE "/$" "" kel_pc_up ${kel_pc_up})
  configure_file(${CMAKE_CURRENT_LIST_DIR}/kel.pc.in ${PROJECT_BINARY_DIR}/kel.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/kel.pc DESTINATION ${kel_pc_dir})
endif()

if(TARGET kel_tool)
  install(TARGETS kel_tool)
endif()
