# Run with cmake -P: writes the C++ file OUT, which defines CommandLine::kindPages() with the pages of BOOK
# about the kinds of diagnostics, as plain text: code is indented, and links and marks are gone.
file(GLOB pages ${BOOK}/diagnostics/*.md)
list(FILTER pages EXCLUDE REGEX "/(index|reading)\\.md$")

# plain(var text): the text of Markdown outside of code.
function(plain var text)
  string(REGEX REPLACE "\\[([^]]*)\\]\\([^)\n]*\\)" "\\1" text "${text}")
  string(REGEX REPLACE "\n#+ " "\n" text "${text}")
  string(REPLACE "`" "" text "${text}")
  string(REPLACE "**" "" text "${text}")
  set(${var} "${text}" PARENT_SCOPE)
endfunction()

set(rows "")
foreach(page IN LISTS pages)
  file(READ ${page} text)
  string(REGEX REPLACE "^# " "" text "${text}")
  set(out "")
  string(FIND "${text}" "```" start)
  while(start GREATER -1)
    string(SUBSTRING "${text}" 0 ${start} prose)
    string(SUBSTRING "${text}" ${start} -1 text)
    string(REGEX MATCH "^```[a-z]*( title=\"([^\"]*)\")?\n" fence "${text}")
    set(title "")
    if(CMAKE_MATCH_2)
      set(title "  ${CMAKE_MATCH_2}:\n")
    endif()
    string(LENGTH "${fence}" length)
    string(SUBSTRING "${text}" ${length} -1 text)
    string(FIND "${text}" "```" end)
    string(SUBSTRING "${text}" 0 ${end} code)
    math(EXPR end "${end} + 3")
    string(SUBSTRING "${text}" ${end} -1 text)
    # A caret would match behind each replacement as well.
    string(REGEX REPLACE "\n([^\n])" "\n    \\1" code "\n${code}")
    string(SUBSTRING "${code}" 1 -1 code)
    plain(prose "${prose}")
    string(APPEND out "${prose}${title}${code}")
    string(FIND "${text}" "```" start)
  endwhile()
  plain(text "${text}")
  string(APPEND out "${text}")
  string(REGEX REPLACE "\n\n+" "\n\n" out "${out}")
  string(REGEX REPLACE "\n+$" "\n" out "${out}")
  string(REGEX REPLACE "([\\\"])" "\\\\\\1" out "${out}")
  string(REGEX REPLACE "([^\n]*)\n" "     \"\\1\\\\n\"\n" out "${out}")
  cmake_path(GET page STEM name)
  string(APPEND rows "    {\"${name}\",\n${out}    },\n")
endforeach()
file(WRITE ${OUT} "// Made by CMake from the book.
#include \"cli/KindPages.hpp\"

namespace CommandLine {

namespace {

constexpr KindPage pages[] = {
${rows}};

}  // namespace

std::span<const KindPage> kindPages() {
    return pages;
}

}  // namespace CommandLine
")
