# The archives and packages that CPack makes: kel-<version>-win32.zip for Windows, and for Linux
# kel-<version>-linux-<processor>.tar.gz and a Debian package. They contain the installed files.
# This file sets their names and adds the texts that accompany them.

# The texts keep the layout of the repository, so that their links remain right. The licences of
# others are those of the packages whose code the binaries contain.
if(WIN32)
  set(kel_text_dir .)
else()
  set(kel_text_dir ${CMAKE_INSTALL_DOCDIR})
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/linux/README.md DESTINATION ${kel_text_dir})
endif()
if(MINGW)
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/windows/README.md DESTINATION .)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/packaging/windows/host DESTINATION .)
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples
        DESTINATION ${kel_text_dir})
install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${PROJECT_SOURCE_DIR}/LICENSE
        DESTINATION ${kel_text_dir})

function(kel_install_license name file)
  if(EXISTS ${file})
    install(FILES ${file} DESTINATION ${kel_text_dir}/licenses RENAME ${name}.txt)
  else()
    message(STATUS "The package lacks the license text of ${name}: ${file} is missing")
  endif()
endfunction()
if(TARGET kel_tool)
  kel_install_license(CLI11 /usr/share/doc/libcli11-dev/copyright)
  kel_install_license(nlohmann-json /usr/share/doc/nlohmann-json3-dev/copyright)
endif()
if(MINGW)
  kel_install_license(gcc-runtime /usr/share/doc/gcc-mingw-w64-i686-posix-runtime/copyright)
  kel_install_license(GPL-3 /usr/share/common-licenses/GPL-3) # the first licence refers to it
  kel_install_license(mingw-w64 /usr/share/doc/mingw-w64-i686-dev/copyright)
endif()

set(CPACK_PACKAGE_NAME kel)
set(CPACK_PACKAGE_VENDOR "the KEL maintainers")
set(CPACK_PACKAGE_CONTACT "The KEL maintainers <kel@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME kel-${PROJECT_VERSION}-win32)
  if(NOT MINGW)
    string(APPEND CPACK_PACKAGE_FILE_NAME -${CMAKE_CXX_COMPILER_ID}) # its hosts differ
  endif()
else()
  set(CPACK_GENERATOR TGZ DEB)
  set(CPACK_PACKAGE_FILE_NAME kel-${PROJECT_VERSION}-linux-${CMAKE_SYSTEM_PROCESSOR})
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  if(CMAKE_SYSTEM_PROCESSOR STREQUAL "i686")
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE i386)
  endif()
  set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
endif()
include(CPack)
