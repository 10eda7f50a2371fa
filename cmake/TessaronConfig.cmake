# find_package(Tessaron) defines the program, as the target Tessaron::CmdTessaron, and the function
# tessaron_run_script.
if(CMAKE_VERSION VERSION_LESS 3.20)
  set(Tessaron_FOUND FALSE)
  set(Tessaron_NOT_FOUND_MESSAGE "Tessaron needs CMake 3.20 or newer.")
  return()
endif()
cmake_policy(VERSION 3.20...3.25)
include(${CMAKE_CURRENT_LIST_DIR}/TessaronProgram.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/TessaronRunScript.cmake)
