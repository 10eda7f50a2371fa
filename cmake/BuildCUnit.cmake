# Builds CUnit::CUnit, the part of CUnit that the self-test uses, from the sources that
# scripts/fetch-sources.sh unpacks. CUnit.h is made as CUnit's own configure makes it, since the
# self-test prints the version that it names.
set(TESSARON_CUNIT_SOURCE ${PROJECT_SOURCE_DIR}/build/sources/cunit
    CACHE PATH "The source of CUnit, as Debian has it")
set(sources ${TESSARON_CUNIT_SOURCE}/CUnit/Sources)
if(NOT EXISTS ${sources}/Basic/Basic.c)
  message(FATAL_ERROR "There is no source of CUnit in ${TESSARON_CUNIT_SOURCE}. "
                      "scripts/fetch-sources.sh fetches it.")
endif()

# The file VERSION holds 2.1-3.
file(STRINGS ${TESSARON_CUNIT_SOURCE}/VERSION version LIMIT_COUNT 1)
string(REPLACE "-" ";" version ${version})
list(GET version 0 VERSION)
list(GET version 1 RELEASE)

set(headers ${PROJECT_BINARY_DIR}/cunit/include)
configure_file(${TESSARON_CUNIT_SOURCE}/CUnit/Headers/CUnit.h.in ${headers}/CUnit/CUnit.h @ONLY)
foreach(header Basic CUError CUnit_intl MyMem TestDB TestRun Util)
  configure_file(${TESSARON_CUNIT_SOURCE}/CUnit/Headers/${header}.h ${headers}/CUnit/${header}.h
                 COPYONLY)
endforeach()
add_library(tessaron_cunit STATIC ${sources}/Basic/Basic.c
            ${sources}/Framework/CUError.c ${sources}/Framework/MyMem.c
            ${sources}/Framework/TestDB.c ${sources}/Framework/TestRun.c
            ${sources}/Framework/Util.c)
add_library(CUnit::CUnit ALIAS tessaron_cunit)
target_include_directories(tessaron_cunit SYSTEM PUBLIC ${headers} PRIVATE ${headers}/CUnit)
target_compile_options(tessaron_cunit PRIVATE -w)
