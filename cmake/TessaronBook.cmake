# The book, docs/book: with TESSARON_BOOK, the target `book` makes HTML of its pages in build/*/book. By
# default it does so where mkdocs and its theme are installed.
find_program(TESSARON_MKDOCS mkdocs)
mark_as_advanced(TESSARON_MKDOCS)
set(default OFF)
if(NOT DEFINED TESSARON_BOOK AND TESSARON_MKDOCS)
  # The Python that has the theme is the one that mkdocs starts.
  file(STRINGS ${TESSARON_MKDOCS} python LIMIT_COUNT 1)
  string(REGEX REPLACE "^#! *" "" python "${python}")
  separate_arguments(python UNIX_COMMAND "${python}")
  execute_process(COMMAND ${python} -c "import pymdownx
from mkdocs.utils import get_theme_names
raise SystemExit('material' not in get_theme_names())"
                  RESULT_VARIABLE result OUTPUT_QUIET ERROR_QUIET)
  if(result EQUAL 0)
    set(default ON)
  endif()
endif()
option(TESSARON_BOOK "Make HTML of the book, which needs mkdocs and mkdocs-material" ${default})
if(TESSARON_BOOK)
  set(html ${PROJECT_BINARY_DIR}/book)
  set(docs ${PROJECT_SOURCE_DIR}/docs)
  file(GLOB_RECURSE pages CONFIGURE_DEPENDS ${docs}/book/*)
  add_custom_command(OUTPUT ${html}.stamp
                     COMMAND ${CMAKE_COMMAND} -E env PYTHONDONTWRITEBYTECODE=1
                             ${TESSARON_MKDOCS} build --quiet --strict
                             --config-file ${docs}/mkdocs.yml --site-dir ${html}
                     COMMAND ${CMAKE_COMMAND} -E touch ${html}.stamp
                     DEPENDS ${pages} ${docs}/mkdocs.yml ${docs}/book_hooks.py VERBATIM)
  add_custom_target(book ALL DEPENDS ${html}.stamp)
  install(DIRECTORY ${html}/ DESTINATION ${documents}/html)
endif()
install(DIRECTORY docs/book DESTINATION ${documents})
# The README, whose links are those of the source, without its lines on what is not installed.
file(READ README.md text)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS README.md)
string(REGEX REPLACE "\n- [^\n]*\\]\\((CONTRIBUTING|docs/architecture)\\.md\\)[^\n]*" "" text "${text}")
string(REPLACE "](docs/" "](" text "${text}")
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/README.md CONTENT "${text}" @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/README.md DESTINATION ${documents})
