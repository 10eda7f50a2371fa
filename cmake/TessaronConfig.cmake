# find_package(Tessaron) defines the programs, as the targets Tessaron::tessaron and
# Tessaron::CmdTessaron, and the function tessaron_run_script.
if(CMAKE_VERSION VERSION_LESS 3.21)
  set(Tessaron_FOUND FALSE)
  set(Tessaron_NOT_FOUND_MESSAGE "Tessaron needs CMake 3.21 or newer.")
  return()
endif()
cmake_policy(VERSION 3.21...3.25)
include(${CMAKE_CURRENT_LIST_DIR}/TessaronProgram.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/TessaronRunScript.cmake)
