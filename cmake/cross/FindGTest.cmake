# GTest::gtest and GTest::gtest_main, from the sources of Debian's package googletest.
set(BUILD_GMOCK OFF)
set(INSTALL_GTEST OFF)
add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
set(GTest_FOUND TRUE)
