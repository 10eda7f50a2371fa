# Makes CUnit::CUnit, the test library that `CmdTessaron test` uses. The static library is preferred,
# so that the program runs where CUnit is not installed.
find_path(CUnit_INCLUDE_DIR CUnit/Basic.h)
find_library(CUnit_LIBRARY NAMES libcunit.a cunit)
mark_as_advanced(CUnit_INCLUDE_DIR CUnit_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(CUnit REQUIRED_VARS CUnit_LIBRARY CUnit_INCLUDE_DIR)

if(CUnit_FOUND AND NOT TARGET CUnit::CUnit)
  add_library(CUnit::CUnit UNKNOWN IMPORTED)
  set_target_properties(CUnit::CUnit PROPERTIES IMPORTED_LOCATION "${CUnit_LIBRARY}"
                        INTERFACE_INCLUDE_DIRECTORIES "${CUnit_INCLUDE_DIR}")
endif()
