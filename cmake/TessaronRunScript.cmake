# tessaron_run_script(<name>
#     SCRIPT <file>
#     OUTPUTS <file>...
#     [VARIABLES <name>=<value>...]
#     [OPTIONS <option of tessaron run>...]
#     [WORKING_DIRECTORY <directory>]
#     [DEPENDS <file or target>...])
#
# Adds the target <name> to the target all. It runs the script with `tessaron run` if the script, a
# file that it read, the program, a variable or an option has changed, or if an output is missing.
# The build fails, and the outputs remain as they were, if anything fails. It fails as well if an
# output is not written.
#
# SCRIPT is relative to the current source directory. WORKING_DIRECTORY is relative to the current
# binary directory, which is also its default. The relative paths in the script and in OUTPUTS are
# relative to WORKING_DIRECTORY. VARIABLES, OPTIONS and OUTPUTS may contain generator expressions.
# A file that the build makes and that the value of a variable names is made before the script runs;
# DEPENDS names other files and targets that must be made before.

# Regular expressions for projects that run CmdTessaron themselves and search what it prints: a
# statement may refuse an argument without failing.
set(Tessaron_REFUSALS
    "file: [^\n]* (contains logical error|has no intel format|did not match parsing pattern)"
    "Nothing was (filled|inserted|written)" "The MemoryBuffer will not be inserted"
    "The (dataLength|max Address) is changed" "Error: Buffer Length" "Empty buffer was returned")

# Prints notes for arguments that earlier versions needed.
function(_tessaron_note_old_arguments name failOn depends)
  set(own ${failOn})
  list(REMOVE_ITEM own ${Tessaron_REFUSALS})
  if(own)
    message(WARNING "tessaron_run_script(${name}): the build does not search the output any more "
                    "and ignores FAIL_ON, which has expressions of its own: ${own}")
  elseif(failOn)
    message(NOTICE "tessaron_run_script(${name}): FAIL_ON is not needed any more and ignored. "
                   "Whatever a statement refuses makes the build fail.")
  endif()
  foreach(entry IN LISTS depends)
    cmake_path(ABSOLUTE_PATH entry BASE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}
               OUTPUT_VARIABLE made)
    get_source_file_property(isMade "${made}" GENERATED)
    if(NOT isMade AND NOT TARGET ${entry} AND NOT entry MATCHES "\\$<")
      message(NOTICE "tessaron_run_script(${name}): DEPENDS need not name ${entry}. The build "
                     "finds out which files the script reads.")
    endif()
  endforeach()
endfunction()

# Sets `result` to the files that the build makes and that the values of `variables` name.
function(_tessaron_made_inputs result folder variables)
  set(made)
  foreach(variable IN LISTS variables)
    string(REGEX REPLACE "^[^=]*=" "" value "${variable}")
    if(value AND NOT value MATCHES "\\$<")
      cmake_path(ABSOLUTE_PATH value BASE_DIRECTORY ${folder} NORMALIZE)
      get_source_file_property(isMade "${value}" GENERATED)
      if(isMade)
        list(APPEND made ${value})
      endif()
    endif()
  endforeach()
  set(${result} ${made} PARENT_SCOPE)
endfunction()

function(tessaron_run_script name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "SCRIPT;WORKING_DIRECTORY"
                        "OUTPUTS;VARIABLES;OPTIONS;DEPENDS;FAIL_ON")
  if(arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "tessaron_run_script(${name}): what is \"${arg_UNPARSED_ARGUMENTS}\"?")
  endif()
  if(NOT arg_SCRIPT OR NOT arg_OUTPUTS)
    message(FATAL_ERROR "tessaron_run_script(${name}): SCRIPT and OUTPUTS are needed.")
  endif()
  _tessaron_note_old_arguments("${name}" "${arg_FAIL_ON}" "${arg_DEPENDS}")
  if(NOT arg_WORKING_DIRECTORY)
    set(arg_WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
  endif()
  cmake_path(ABSOLUTE_PATH arg_SCRIPT BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} NORMALIZE)
  cmake_path(ABSOLUTE_PATH arg_WORKING_DIRECTORY BASE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}
             NORMALIZE)
  set(outputs)
  foreach(output IN LISTS arg_OUTPUTS)
    if(NOT output MATCHES "^\\$<")
      cmake_path(ABSOLUTE_PATH output BASE_DIRECTORY ${arg_WORKING_DIRECTORY} NORMALIZE)
    endif()
    list(APPEND outputs ${output})
  endforeach()
  _tessaron_made_inputs(inputs ${arg_WORKING_DIRECTORY} "${arg_VARIABLES}")

  # The settings of the run are in a file that changes only with its contents. So a variable or an
  # option is an input like any other, although makefiles do not compare command lines.
  set(base ${CMAKE_CURRENT_BINARY_DIR}/CMakeFiles/tessaron/${name}$<$<BOOL:$<CONFIG>>:-$<CONFIG>>)
  file(GENERATE OUTPUT ${base}.cmake CONTENT "\
set(arguments [====[${arg_OPTIONS};${arg_VARIABLES}]====])
set(base [====[${base}]====])
set(script [====[${arg_SCRIPT}]====])
set(workingDirectory [====[${arg_WORKING_DIRECTORY}]====])
set(outputs [====[${outputs}]====])
")
  set(step ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/TessaronRunStep.cmake)
  set(runStep ${CMAKE_COMMAND} -D SETTINGS=${base}.cmake)
  cmake_path(GET arg_SCRIPT FILENAME scriptName)
  add_custom_command(OUTPUT ${base}.done ${outputs}
                     COMMAND ${runStep} -D STEP=prepare -P ${step}
                     COMMAND Tessaron::tessaron run -C ${arg_WORKING_DIRECTORY}
                             --depfile ${base}.rule "${arg_OPTIONS}" ${arg_SCRIPT}
                             "${arg_VARIABLES}"
                     COMMAND ${runStep} -D STEP=finish -P ${step}
                     DEPENDS ${arg_SCRIPT} ${base}.cmake ${step} Tessaron::tessaron ${inputs}
                             ${arg_DEPENDS}
                     DEPFILE ${base}.d
                     COMMENT "Running ${scriptName} (${name})" VERBATIM COMMAND_EXPAND_LISTS)
  add_custom_target(${name} ALL DEPENDS ${base}.done)
endfunction()
