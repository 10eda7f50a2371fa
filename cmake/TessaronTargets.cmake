# tessaron_library and its siblings set the standard, the include root and the warnings, so that no
# folder sets flags of its own.

find_package(Boost 1.74 REQUIRED)

# The compilers under which every submission is built. A warning of another one, true or not, must not
# keep anybody from running the tests.
set(TESSARON_CHECKED_COMPILERS "GNU 12" "Clang 14" "Clang 16")
string(REGEX MATCH "^[0-9]+" compiler_version "${CMAKE_CXX_COMPILER_VERSION}")
set(TESSARON_COMPILER "${CMAKE_CXX_COMPILER_ID} ${compiler_version}")

function(tessaron_settings target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion)
  # Compiled together, a source's own names seem to hide those of the one before. Those of functions
  # are still compared by g++.
  set(together $<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>)
  target_compile_options(
    ${target} PRIVATE $<$<NOT:${together}>:-Wshadow>
                      $<$<AND:${together},$<CXX_COMPILER_ID:GNU>>:-Wshadow=local>)
  # By default g++ looks for memory that it can free so often that it takes a tenth of its time.
  target_compile_options(${target} PRIVATE "$<$<CXX_COMPILER_ID:GNU>:SHELL:--param ggc-min-heapsize=1000000>")
  if(TESSARON_WERROR AND TESSARON_COMPILER IN_LIST TESSARON_CHECKED_COMPILERS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(TESSARON_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${TESSARON_SANITIZE}
                           -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${TESSARON_SANITIZE})
    target_compile_definitions(${target} PRIVATE TESSARON_SANITIZED)
    # With the checks in between, g++ takes the values inside boost::optional for uninitialised.
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  endif()
  if(TESSARON_COVERAGE)
    target_compile_options(${target} PRIVATE --coverage -fprofile-abs-path)
    target_link_options(${target} PRIVATE --coverage)
  endif()
endfunction()

# tessaron_declare(target SOURCES file... [INSTEAD file...] [DEPENDS target...] [HIDES target...])
# Records what a folder declares, for tessaron_write_structure.
function(tessaron_declare target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;INSTEAD;DEPENDS;HIDES")
  list(APPEND arg_SOURCES ${arg_INSTEAD})
  list(TRANSFORM arg_SOURCES PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/ REGEX "^[^/]")
  cmake_path(RELATIVE_PATH CMAKE_CURRENT_SOURCE_DIR BASE_DIRECTORY ${PROJECT_SOURCE_DIR}
             OUTPUT_VARIABLE folder)
  set(entry "{\"target\": \"${target}\", \"folder\": \"${folder}\"")
  foreach(key IN ITEMS SOURCES DEPENDS HIDES)
    list(TRANSFORM arg_${key} REPLACE "(.+)" "\"\\1\"")
    list(JOIN arg_${key} ", " values)
    string(TOLOWER ${key} key)
    string(APPEND entry ", \"${key}\": [${values}]")
  endforeach()
  set_property(GLOBAL APPEND PROPERTY TESSARON_STRUCTURE "${entry}}")
endfunction()

# Writes structure.json into the build folder: target, folder, sources and dependencies of every
# target, in the order of the declarations. tests/structure compares it with the includes.
function(tessaron_write_structure)
  get_property(entries GLOBAL PROPERTY TESSARON_STRUCTURE)
  list(JOIN entries ",\n " entries)
  file(WRITE ${PROJECT_BINARY_DIR}/structure.json "[${entries}]\n")
endfunction()

# tessaron_source_property(file property value...)
# Sets a property of a source of the folder, which has to exist: CMake takes any name, and a source that
# is renamed would lose its property.
function(tessaron_source_property source property)
  if(NOT EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${source})
    message(FATAL_ERROR "${CMAKE_CURRENT_SOURCE_DIR} has no ${source} to set ${property} of")
  endif()
  set_property(SOURCE ${source} PROPERTY ${property} ${ARGN})
endfunction()

# tessaron_library(name SOURCES file... [INSTEAD file...] [DEPENDS target...] [HIDES target...])
# Makes tessaron::name. The headers of the folder include what DEPENDS names, only its sources what
# HIDES names. INSTEAD names the sources of the folder that other settings build.
function(tessaron_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;INSTEAD;DEPENDS;HIDES")
  add_library(tessaron_${name} STATIC ${arg_SOURCES})
  add_library(tessaron::${name} ALIAS tessaron_${name})
  tessaron_settings(tessaron_${name})
  target_include_directories(tessaron_${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(tessaron_${name} PUBLIC ${arg_DEPENDS} PRIVATE ${arg_HIDES})
  tessaron_declare(tessaron::${name} ${ARGN})
endfunction()

# tessaron_seldom_run(target...)
# The code of the targets runs once a run, a diagnostic or a keystroke: more optimisation than -O1 would
# take a fifth longer to compile and save nothing that can be measured.
function(tessaron_seldom_run)
  foreach(target IN LISTS ARGN)
    target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-O1>)
  endforeach()
endfunction()

# tessaron_executable(name SOURCES file... DEPENDS target...)
function(tessaron_executable name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;DEPENDS")
  add_executable(${name} ${arg_SOURCES})
  tessaron_settings(${name})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE ${arg_DEPENDS})
  tessaron_declare(${name} ${ARGN})
endfunction()

# tessaron_program(name description)
# Makes an executable one that ships: in the build folder itself, static if the option says so, and
# on Windows with its version data as a resource.
function(tessaron_program name description)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
  if(TESSARON_STATIC AND WIN32)
    target_link_options(${name} PRIVATE -static)
  elseif(TESSARON_STATIC)
    # The option -static of g++ itself leaves out the index of stack frames, so that the first
    # exception of a run sorts them all, which takes longer than a small script.
    target_link_options(${name} PRIVATE -no-pie -static-libgcc -Wl,-static)
  endif()
  if(WIN32)
    set(TESSARON_PROGRAM ${name})
    set(TESSARON_DESCRIPTION ${description})
    set(folder ${PROJECT_SOURCE_DIR}/platform)
    set(resource ${CMAKE_CURRENT_BINARY_DIR}/${name}.rc)
    configure_file(${folder}/Program.rc.in ${resource} @ONLY)
    target_sources(${name} PRIVATE ${resource})
    set_source_files_properties(${resource} PROPERTIES
        INCLUDE_DIRECTORIES "${PROJECT_BINARY_DIR}/platform;${folder}"
        # The resource compiler reports nothing that ninja could learn these from.
        OBJECT_DEPENDS "${folder}/Program.manifest;${PROJECT_BINARY_DIR}/platform/VersionData.hpp")
  endif()
endfunction()
