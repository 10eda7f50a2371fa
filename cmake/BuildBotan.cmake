# Builds Botan::botan, the part of Botan that crypto/signature/ uses, from the sources that
# scripts/fetch-sources.sh unpacks. Botan's own configure.py makes one source of them, whose compilation
# takes a minute.
set(TESSARON_BOTAN_SOURCE ${PROJECT_SOURCE_DIR}/build/sources/botan
    CACHE PATH "The source of Botan, as Debian has it")
if(NOT EXISTS ${TESSARON_BOTAN_SOURCE}/configure.py)
  message(FATAL_ERROR "There is no source of Botan in ${TESSARON_BOTAN_SOURCE}. "
                      "scripts/fetch-sources.sh fetches it.")
endif()

set(folder ${PROJECT_BINARY_DIR}/botan)
set(source ${folder}/botan_all.cpp)
if(NOT EXISTS ${source} OR ${CMAKE_CURRENT_LIST_FILE} IS_NEWER_THAN ${source})
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  set(system linux)
  if(WIN32)
    set(system mingw)
  endif()
  file(MAKE_DIRECTORY ${folder})
  execute_process(
    COMMAND ${Python3_EXECUTABLE} ${TESSARON_BOTAN_SOURCE}/configure.py --quiet --os=${system}
            --cpu=${CMAKE_SYSTEM_PROCESSOR} --cc=gcc --cc-bin=${CMAKE_CXX_COMPILER}
            --with-build-dir=${folder} --amalgamation --disable-shared-library
            --without-documentation --minimized-build
            # Signatures, then what keys may be encrypted with.
            --enable-modules=ed25519,ecdsa,rfc6979,rsa,emsa1,emsa_pssr,emsa_pkcs1,sha2_32,sha2_64
            --enable-modules=pbes2,pbkdf2,scrypt,hmac,sha1,aes,des,cbc,base64
    WORKING_DIRECTORY ${folder} COMMAND_ERROR_IS_FATAL ANY)
endif()
file(STRINGS ${folder}/build/include/botan/build.h Botan_VERSION
     REGEX "define BOTAN_VERSION_(MAJOR|MINOR|PATCH) ")
list(TRANSFORM Botan_VERSION REPLACE ".* ([0-9]+)$" "\\1")
list(JOIN Botan_VERSION "." Botan_VERSION)

add_library(tessaron_botan STATIC ${source})
add_library(Botan::botan ALIAS tessaron_botan)
target_include_directories(tessaron_botan SYSTEM PUBLIC ${folder}/build/include)
# It is C++11, in which some expressions mean what they do not in C++20. Its assertions name their file.
set_target_properties(tessaron_botan PROPERTIES CXX_STANDARD 17)
target_compile_options(tessaron_botan PRIVATE -w -O2 -ffile-prefix-map=${folder}/=)
