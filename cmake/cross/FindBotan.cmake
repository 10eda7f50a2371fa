include(${PROJECT_SOURCE_DIR}/cmake/BuildBotan.cmake)
set(Botan_FOUND TRUE)
