# Makes nlohmann_json::nlohmann_json of the headers of the host.
include(${CMAKE_CURRENT_LIST_DIR}/HostHeaders.cmake)
tessaron_host_headers(nlohmann_json::nlohmann_json nlohmann)
set(nlohmann_json_FOUND TRUE)
