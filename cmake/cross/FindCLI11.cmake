# Finds CLI11 for a cross build: the headers of the building machine.
include(KelHeaderPackage)
kel_header_package(CLI11::CLI11 CLI CLI.hpp)
if(TARGET CLI11::CLI11)
  set(CLI11_FOUND TRUE)
elseif(CLI11_FIND_REQUIRED)
  message(FATAL_ERROR "CLI/CLI.hpp is not installed (libcli11-dev).")
endif()
