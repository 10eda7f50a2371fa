# What the tests of a cross compiled build leave out, read from left-out.tsv beside this file, and
# how they start the programs. A native build leaves nothing out.
set(TESSARON_EMULATOR)
if(CMAKE_CROSSCOMPILING)
  set(TESSARON_EMULATOR ${CMAKE_CROSSCOMPILING_EMULATOR})
  string(TOLOWER ${CMAKE_SYSTEM_NAME} TESSARON_TEST_PLATFORM)
  if(TESSARON_TEST_PLATFORM STREQUAL linux)
    set(TESSARON_TEST_PLATFORM ${CMAKE_SYSTEM_PROCESSOR})
  endif()
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
               ${CMAKE_CURRENT_LIST_DIR}/left-out.tsv)
  file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/left-out.tsv TESSARON_LEFT_OUT
       REGEX "^(${TESSARON_TEST_PLATFORM}|all)\t")
endif()

# tessaron_left_out(parts test)
# The parts of `test` that are left out; "-" among them is the whole test.
function(tessaron_left_out parts test)
  set(found)
  foreach(line IN LISTS TESSARON_LEFT_OUT)
    string(REPLACE "\t" ";" fields "${line}")
    list(GET fields 1 pattern)
    list(GET fields 2 part)
    string(REPLACE "." "\\." pattern "${pattern}")
    string(REPLACE "*" ".*" pattern "${pattern}")
    if(test MATCHES "^${pattern}$")
      list(APPEND found "${part}")
      set_property(GLOBAL APPEND PROPERTY TESSARON_LEFT_OUT_USED "${line}")
    endif()
  endforeach()
  set(${parts} ${found} PARENT_SCOPE)
endfunction()

# tessaron_add_test(NAME name COMMAND command...)
# As add_test. A test that is left out is disabled, so that ctest lists it.
function(tessaron_add_test)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "NAME" "")
  add_test(${ARGV})
  tessaron_left_out(parts ${arg_NAME})
  if("-" IN_LIST parts)
    set_tests_properties(${arg_NAME} PROPERTIES DISABLED TRUE)
  endif()
endfunction()

# tessaron_command(path target)
# The path by which tests start the program `target`. For another platform, that is a script which
# starts the emulator. A test that needs the file of the program itself takes TESSARON_EMULATOR.
function(tessaron_command path target)
  set(command $<TARGET_FILE:${target}>)
  if(CMAKE_CROSSCOMPILING)
    set(TESSARON_TARGET ${target})
    set(TESSARON_TARGET_FILE ${command})
    list(JOIN TESSARON_EMULATOR "' '" TESSARON_EMULATOR)
    set(template emulated.sh.in)
    if(WIN32)
      set(template emulated-windows.sh.in)
    endif()
    set(command ${PROJECT_BINARY_DIR}/launch/${target})
    configure_file(${PROJECT_SOURCE_DIR}/tests/platforms/${template} ${command}.in @ONLY)
    file(GENERATE OUTPUT ${command} INPUT ${command}.in
         FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                          WORLD_READ WORLD_EXECUTE)
  endif()
  set(${path} ${command} PARENT_SCOPE)
endfunction()

# tessaron_check_left_out()
# At the end of the tests: every line of the list names a test that there is.
function(tessaron_check_left_out)
  get_property(used GLOBAL PROPERTY TESSARON_LEFT_OUT_USED)
  foreach(line IN LISTS TESSARON_LEFT_OUT)
    if(NOT line IN_LIST used)
      message(SEND_ERROR "left-out.tsv: there is no such test: ${line}")
    endif()
  endforeach()
endfunction()
