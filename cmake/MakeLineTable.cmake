# Run with cmake -P: writes the C++ file SOURCE, whose SelfTest::FUNCTION returns the lines of DATA.
# Rows of equal length need no pointers and so no initialisation at program start. One literal per
# line stays below the length limit of every compiler.
file(READ ${DATA} text)
file(STRINGS ${DATA} lines NO_HEX_CONVERSION)
set(longest 0)
foreach(line IN LISTS lines)
  string(LENGTH "${line}" length)
  if(length GREATER longest)
    set(longest ${length})
  endif()
endforeach()
math(EXPR row "${longest} + 1")
string(REGEX REPLACE "([\\\"])" "\\\\\\1" text "${text}")
string(REGEX REPLACE "([^\n]*)\n" "    \"\\1\",\n" text "${text}")
cmake_path(GET DATA FILENAME name)
file(WRITE ${SOURCE} "// Made by CMake from selftest/data/${name}.
#include <iterator>

#include \"selftest/LineTables.hpp\"

namespace SelfTest {

namespace {

constexpr char rows[][${row}] = {
${text}};

}  // namespace

const std::deque<std::string>& ${FUNCTION}() {
    static const std::deque<std::string> lines(std::begin(rows), std::end(rows));
    return lines;
}

}  // namespace SelfTest
")
