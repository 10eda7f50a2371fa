# Makes Boost::headers of the headers of the host.
include(${CMAKE_CURRENT_LIST_DIR}/HostHeaders.cmake)
tessaron_host_headers(Boost::headers boost)
set(Boost_FOUND TRUE)
