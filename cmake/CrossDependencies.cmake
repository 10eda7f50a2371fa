# What the programs and tests are built from when the compiler makes programs for another platform:
# the modules in cmake/cross take the place of those that find what is installed for the host.
enable_language(C)
if(WIN32)
  enable_language(RC)
endif()
list(PREPEND CMAKE_MODULE_PATH ${CMAKE_CURRENT_LIST_DIR}/cross)

# Libraries that are headers serve every platform. They are reached through links in a folder of
# their own: with /usr/include itself, the host's C library would come along.
set(TESSARON_HOST_HEADERS ${PROJECT_BINARY_DIR}/host-headers)
file(MAKE_DIRECTORY ${TESSARON_HOST_HEADERS})
foreach(folder boost CLI nlohmann)
  if(NOT IS_DIRECTORY /usr/include/${folder})
    message(FATAL_ERROR "There is no /usr/include/${folder}. scripts/setup.sh build installs it.")
  endif()
  file(CREATE_LINK /usr/include/${folder} ${TESSARON_HOST_HEADERS}/${folder} SYMBOLIC)
endforeach()

# tessaron_host_headers(package target header names)
# For a find module: makes `target`, whose headers are the host's, and sets the version to that of
# the macros in `header` that match `names`, in the order of the header.
macro(tessaron_host_headers package target header names)
  file(STRINGS ${TESSARON_HOST_HEADERS}/${header} ${package}_VERSION REGEX "define ${names} ")
  list(TRANSFORM ${package}_VERSION REPLACE ".*define ${names} +([0-9]+).*" "\\2")
  list(JOIN ${package}_VERSION "." ${package}_VERSION)
  include(FindPackageHandleStandardArgs)
  find_package_handle_standard_args(${package} REQUIRED_VARS TESSARON_HOST_HEADERS
                                    VERSION_VAR ${package}_VERSION)
  if(NOT TARGET ${target})
    add_library(${target} INTERFACE IMPORTED)
    target_include_directories(${target} SYSTEM INTERFACE ${TESSARON_HOST_HEADERS})
  endif()
endmacro()
