# Makes Botan::botan, the library of crypto/signature/. The static library is preferred, so that the
# program runs where Botan is not installed. Debian's has 270 MB of debug information, which every
# program that is linked would take over; the build links a copy without.
find_path(Botan_INCLUDE_DIR botan/build.h PATH_SUFFIXES botan-2)
find_library(Botan_LIBRARY NAMES libbotan-2.a botan-2)
mark_as_advanced(Botan_INCLUDE_DIR Botan_LIBRARY)
if(Botan_INCLUDE_DIR)
  file(STRINGS ${Botan_INCLUDE_DIR}/botan/build.h Botan_VERSION
       REGEX "define BOTAN_VERSION_(MAJOR|MINOR|PATCH) ")
  list(TRANSFORM Botan_VERSION REPLACE ".* ([0-9]+)$" "\\1")
  list(JOIN Botan_VERSION "." Botan_VERSION)
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Botan REQUIRED_VARS Botan_LIBRARY Botan_INCLUDE_DIR
                                  VERSION_VAR Botan_VERSION)

if(Botan_FOUND AND NOT TARGET Botan::botan)
  set(library ${Botan_LIBRARY})
  if(library MATCHES "\\.a$" AND CMAKE_OBJCOPY)
    set(library ${PROJECT_BINARY_DIR}/libbotan.a)
    if(NOT EXISTS ${library} OR ${Botan_LIBRARY} IS_NEWER_THAN ${library})
      execute_process(COMMAND ${CMAKE_OBJCOPY} --strip-debug ${Botan_LIBRARY} ${library}
                      COMMAND_ERROR_IS_FATAL ANY)
    endif()
  endif()
  # It makes threads.
  find_package(Threads REQUIRED)
  add_library(Botan::botan UNKNOWN IMPORTED)
  set_target_properties(Botan::botan PROPERTIES IMPORTED_LOCATION "${library}"
                        INTERFACE_INCLUDE_DIRECTORIES "${Botan_INCLUDE_DIR}"
                        INTERFACE_LINK_LIBRARIES Threads::Threads)
endif()
