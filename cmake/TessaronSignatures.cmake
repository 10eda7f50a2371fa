# TESSARON_SIGNATURES: whether the programs can sign and verify, for which they need Botan. Where it is
# not set, that follows from what the machine has.
if(NOT DEFINED TESSARON_SIGNATURES AND CMAKE_SYSTEM_NAME STREQUAL Linux
   AND CMAKE_SYSTEM_PROCESSOR STREQUAL x86_64)
  find_package(Botan 2.19 QUIET)
endif()
set(default OFF)
if(Botan_FOUND)
  set(default ON)
endif()
option(TESSARON_SIGNATURES "Build with signatures, which needs Botan 2.19" ${default})
if(TESSARON_SIGNATURES)
  find_package(Botan 2.19 REQUIRED)
else()
  message(STATUS "The programs refuse all keys: -DTESSARON_SIGNATURES=ON, with Botan 2.19, lets "
                 "them sign and verify")
  # Nothing is linked, but every build declares the same.
  add_library(Botan::botan INTERFACE IMPORTED)
endif()
