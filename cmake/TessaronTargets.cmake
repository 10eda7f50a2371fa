# tessaron_library and its siblings set the standard, the include root and the warnings, so that no
# folder sets flags of its own.

find_package(Boost 1.74 REQUIRED)

function(tessaron_settings target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
  if(TESSARON_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(TESSARON_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${TESSARON_SANITIZE}
                           -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${TESSARON_SANITIZE})
    # With the checks in between, g++ takes the values inside boost::optional for uninitialised.
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  endif()
  if(TESSARON_COVERAGE)
    target_compile_options(${target} PRIVATE --coverage -fprofile-abs-path)
    target_link_options(${target} PRIVATE --coverage)
  endif()
endfunction()

# tessaron_library(name SOURCES file... [DEPENDS target...] [HIDES target...])
# Makes tessaron::name. What stands behind HIDES is linked, but no header of this folder shows it.
function(tessaron_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;DEPENDS;HIDES")
  add_library(tessaron_${name} STATIC ${arg_SOURCES})
  add_library(tessaron::${name} ALIAS tessaron_${name})
  tessaron_settings(tessaron_${name})
  target_include_directories(tessaron_${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(tessaron_${name} PUBLIC ${arg_DEPENDS} PRIVATE ${arg_HIDES})
endfunction()

# tessaron_executable(name SOURCES file... DEPENDS target...)
function(tessaron_executable name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;DEPENDS")
  add_executable(${name} ${arg_SOURCES})
  tessaron_settings(${name})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE ${arg_DEPENDS})
endfunction()
