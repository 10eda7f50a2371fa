# Run with cmake -P, for tessaron_run_script: runs the script that the file SETTINGS describes and
# fails if the program reports a failure, which its exit code does not show.
cmake_minimum_required(VERSION 3.20)
include(${SETTINGS})

# The outputs of an earlier or a failed run must not be taken for those of this run. The stamp is
# written last, so that an interrupted run is repeated.
file(REMOVE ${stamp} ${outputs})
file(MAKE_DIRECTORY ${workingDirectory})
foreach(output IN LISTS outputs)
  cmake_path(GET output PARENT_PATH directory)
  file(MAKE_DIRECTORY ${directory})
endforeach()

execute_process(COMMAND ${program} ${variables} ${script} WORKING_DIRECTORY ${workingDirectory}
                RESULT_VARIABLE result
                OUTPUT_VARIABLE printed ECHO_OUTPUT_VARIABLE
                ERROR_VARIABLE errors ECHO_ERROR_VARIABLE)

set(faults)
if(NOT result STREQUAL "0")
  list(APPEND faults "the run ended with ${result}")
endif()
if("\n${printed}" MATCHES "\nOperation aborted\\.")
  list(APPEND faults "a statement failed, see \"Operation aborted.\"")
endif()
if(errors MATCHES "Warning: [^\n]* could not be (written|read) completely !")
  list(APPEND faults "a file could not be written or read completely")
endif()
foreach(expression IN LISTS failOn)
  if("${printed}\n${errors}" MATCHES "${expression}")
    list(APPEND faults "the output matches \"${expression}\"")
  endif()
endforeach()
foreach(output IN LISTS outputs)
  if(NOT EXISTS ${output})
    list(APPEND faults "${output} was not written")
  endif()
endforeach()

if(faults)
  file(REMOVE ${outputs})
  list(JOIN faults "\n  " faults)
  message(FATAL_ERROR "${script}:\n  ${faults}")
endif()
file(TOUCH ${stamp})
