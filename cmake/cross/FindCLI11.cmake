# Makes CLI11::CLI11 of the headers of the host.
include(${CMAKE_CURRENT_LIST_DIR}/HostHeaders.cmake)
tessaron_host_headers(CLI11::CLI11 CLI)
set(CLI11_FOUND TRUE)
