# The headers of Boost, through the link. Debian's own configuration files name /usr/include.
set(Boost_NO_BOOST_CMAKE ON)
set(Boost_INCLUDE_DIR ${TESSARON_HOST_HEADERS})
include(${CMAKE_ROOT}/Modules/FindBoost.cmake)
