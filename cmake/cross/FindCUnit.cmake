include(${PROJECT_SOURCE_DIR}/cmake/BuildCUnit.cmake)
set(CUnit_FOUND TRUE)
