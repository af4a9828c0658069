# Finds nlohmann-json for a cross build: the headers of the building machine.
include(KelHeaderPackage)
kel_header_package(nlohmann_json::nlohmann_json nlohmann json.hpp)
if(TARGET nlohmann_json::nlohmann_json)
  set(nlohmann_json_FOUND TRUE)
elseif(nlohmann_json_FIND_REQUIRED)
  message(FATAL_ERROR "nlohmann/json.hpp is not installed (nlohmann-json3-dev).")
endif()
