# tessaron_run_script(<name>
#     SCRIPT <file>
#     OUTPUTS <file>...
#     [VARIABLES <name>=<value>...]
#     [DEPENDS <file or target>...]
#     [WORKING_DIRECTORY <directory>]
#     [FAIL_ON <regular expression>...])
#
# Adds the target <name> to the target all. It runs the script if the script, the program, a
# variable or an entry of DEPENDS has changed, or if an output is missing. The build fails, and the
# outputs are removed, if a statement fails, a file cannot be read or written completely, the exit
# code is not 0, an output is not written, or the printed text matches a FAIL_ON expression.
#
# SCRIPT is relative to the current source directory. WORKING_DIRECTORY is relative to the current
# binary directory, which is also its default. The relative paths in the script and in OUTPUTS are
# relative to WORKING_DIRECTORY. DEPENDS names every file that the script reads, as in
# add_custom_command. VARIABLES and OUTPUTS may contain generator expressions.
# A statement may also refuse an argument without failing: a damaged file yields an empty image, and
# a checksum that does not fit into an image is not written. With FAIL_ON ${Tessaron_REFUSALS} such
# a run fails as well.
set(Tessaron_REFUSALS
    "file: [^\n]* (contains logical error|has no intel format|did not match parsing pattern)"
    "Nothing was (filled|inserted|written)" "The MemoryBuffer will not be inserted"
    "The (dataLength|max Address) is changed" "Error: Buffer Length")

function(tessaron_run_script name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "SCRIPT;WORKING_DIRECTORY"
                        "OUTPUTS;VARIABLES;DEPENDS;FAIL_ON")
  if(arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "tessaron_run_script(${name}): what is \"${arg_UNPARSED_ARGUMENTS}\"?")
  endif()
  if(NOT arg_SCRIPT OR NOT arg_OUTPUTS)
    message(FATAL_ERROR "tessaron_run_script(${name}): SCRIPT and OUTPUTS are needed.")
  endif()
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

  # The settings of the run are in a file that changes only with its contents. So a variable is an
  # input like any other, for every generator.
  set(base ${CMAKE_CURRENT_BINARY_DIR}/CMakeFiles/tessaron/${name}$<$<BOOL:$<CONFIG>>:-$<CONFIG>>)
  file(GENERATE OUTPUT ${base}.cmake CONTENT "\
set(program [====[$<TARGET_FILE:Tessaron::CmdTessaron>]====])
set(script [====[${arg_SCRIPT}]====])
set(workingDirectory [====[${arg_WORKING_DIRECTORY}]====])
set(variables [====[${arg_VARIABLES}]====])
set(outputs [====[${outputs}]====])
set(stamp [====[${base}.done]====])
set(failOn [====[${arg_FAIL_ON}]====])
")
  cmake_path(GET arg_SCRIPT FILENAME scriptName)
  set(execute ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/TessaronExecuteScript.cmake)
  add_custom_command(OUTPUT ${base}.done ${outputs}
                     COMMAND ${CMAKE_COMMAND} -D SETTINGS=${base}.cmake -P ${execute}
                     DEPENDS ${arg_SCRIPT} ${base}.cmake ${execute} Tessaron::CmdTessaron
                             ${arg_DEPENDS}
                     COMMENT "Running ${scriptName} (${name})" VERBATIM)
  add_custom_target(${name} ALL DEPENDS ${base}.done)
endfunction()
