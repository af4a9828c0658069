# The archives that CPack makes: kel-<version>-win32.zip and kel-<version>-win64.zip for Windows and
# kel-<version>-linux-<processor>.tar.gz for Linux. They contain the installed files. This file sets
# their names and adds the texts that accompany them. Debian packages contain the same files; see
# packaging/debian.

# Debian's folder for the libraries of one processor, such as lib/x86_64-linux-gnu. Only Debian's
# packages have it.
if(UNIX AND NOT APPLE AND KEL_BUILD_SHARED)
  separate_arguments(kel_flags UNIX_COMMAND "${CMAKE_CXX_FLAGS}")
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} ${kel_flags} -print-multiarch
    OUTPUT_VARIABLE kel_triplet OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  if(kel_triplet)
    kel_install_library(lib/${kel_triplet} kelDebianTargets
      libkel${PROJECT_VERSION_MAJOR} libkel-dev EXCLUDE_FROM_ALL)
  endif()
endif()

# The texts keep the layout of the repository, so that their links remain right. The licences of
# others are those of the packages whose code the binaries contain.
if(WIN32)
  set(kel_text_dir .)
else()
  set(kel_text_dir ${CMAKE_INSTALL_DOCDIR})
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/linux/README.md DESTINATION ${kel_text_dir}
          COMPONENT kel-doc)
endif()
if(WIN32)
  math(EXPR kel_bits "${CMAKE_SIZEOF_VOID_P} * 8")
endif()
if(MINGW)
  set(kel_processor i686)
  if(kel_bits EQUAL 64)
    set(kel_processor x86_64)
  endif()
  string(REGEX REPLACE "^libgcc_s_(.*)-1[.]dll$" "\\1" kel_exceptions ${KEL_LIBGCC})
  set(kel_archive kel-${PROJECT_VERSION})
  configure_file(${PROJECT_SOURCE_DIR}/packaging/windows/README.md.in
    ${PROJECT_BINARY_DIR}/packaging/README.md @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/packaging/README.md DESTINATION . COMPONENT tree)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/packaging/windows/host DESTINATION . COMPONENT tree)
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples
        DESTINATION ${kel_text_dir} COMPONENT kel-doc)
install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION ${kel_text_dir} COMPONENT kel-doc)
# The reference and all pages as a site, if scripts/package.sh has built it.
install(DIRECTORY ${PROJECT_BINARY_DIR}/docs/html DESTINATION ${kel_text_dir} COMPONENT kel-doc OPTIONAL)
# A Debian package has its license in the file "copyright".
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${kel_text_dir} COMPONENT tree)

function(kel_install_license name file)
  if(EXISTS ${file})
    install(FILES ${file} DESTINATION ${kel_text_dir}/licenses RENAME ${name}.txt
            COMPONENT kel)
  else()
    message(STATUS "The package lacks the license text of ${name}: ${file} is missing")
  endif()
endfunction()
if(TARGET kel_tool)
  kel_install_license(CLI11 /usr/share/doc/libcli11-dev/copyright)
  kel_install_license(nlohmann-json /usr/share/doc/nlohmann-json3-dev/copyright)
endif()
if(MINGW)
  string(REPLACE _ - kel_debian_processor ${kel_processor})
  kel_install_license(gcc-runtime
    /usr/share/doc/gcc-mingw-w64-${kel_debian_processor}-posix-runtime/copyright)
  kel_install_license(GPL-3 /usr/share/common-licenses/GPL-3) # the first licence refers to it
  kel_install_license(mingw-w64 /usr/share/doc/mingw-w64-${kel_debian_processor}-dev/copyright)
endif()

set(CPACK_PACKAGE_NAME kel)
set(CPACK_PACKAGE_VENDOR "the KEL maintainers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME kel-${PROJECT_VERSION}-win${kel_bits})
  if(NOT MINGW)
    string(APPEND CPACK_PACKAGE_FILE_NAME -${CMAKE_CXX_COMPILER_ID}) # its hosts differ
  endif()
else()
  set(CPACK_GENERATOR TGZ)
  set(CPACK_PACKAGE_FILE_NAME kel-${PROJECT_VERSION}-linux-${CMAKE_SYSTEM_PROCESSOR})
endif()
include(CPack)
