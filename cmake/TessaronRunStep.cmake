# Run with cmake -P, for tessaron_run_script, in front of and after the run of the script that the
# file SETTINGS describes. STEP is prepare or finish.
cmake_minimum_required(VERSION 3.21)
include(${SETTINGS})

if(STEP STREQUAL "prepare")
  file(MAKE_DIRECTORY ${workingDirectory})
  foreach(output IN LISTS outputs)
    cmake_path(GET output PARENT_PATH directory)
    file(MAKE_DIRECTORY ${directory})
  endforeach()
  file(TOUCH ${base}.started)
  return()
endif()

# An output of an earlier run must not be taken for one of this run. Files of the same time count as
# newer than each other.
foreach(output IN LISTS outputs)
  if(NOT EXISTS ${output} OR NOT ${output} IS_NEWER_THAN ${base}.started)
    message(FATAL_ERROR "${script}: ${output} was not written")
  endif()
endforeach()

# The rule that tessaron writes is "outputs: \", then one line "  input \" for each input. CMake
# needs it with the stamp as its output, and with absolute paths.
function(escape variable path)
  foreach(special IN ITEMS " " "#")
    string(REPLACE "${special}" "\\${special}" path "${path}")
  endforeach()
  string(REPLACE "$" "$$" path "${path}")
  set(${variable} "${path}" PARENT_SCOPE)
endfunction()
escape(stampInRule "${base}.done")
escape(folderInRule "${workingDirectory}")
file(READ ${base}.rule rule)
string(FIND "${rule}" ": \\\n" endOfOutputs)
string(SUBSTRING "${rule}" ${endOfOutputs} -1 inputs)
string(REPLACE "\n  " "\n  ${folderInRule}/" inputs "${inputs}")
string(REPLACE "\n  ${folderInRule}//" "\n  /" inputs "${inputs}")
file(WRITE ${base}.d "${stampInRule}${inputs}")
# Last, so that an interrupted run is repeated.
file(TOUCH ${base}.done)
