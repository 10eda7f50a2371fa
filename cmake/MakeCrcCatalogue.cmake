# Run with cmake -P: writes the C++ file SOURCE, which defines Util::Crc::catalogue() with the rows
# of DATA up to 64 bits.
file(STRINGS ${DATA} lines REGEX "^[^#]")
foreach(line IN LISTS lines)
  string(REPLACE "\t" ";" fields "${line}")
  list(GET fields 0 1 2 3 4 5 6 row)
  list(POP_FRONT row name width)
  if(width GREATER 64)
    continue()
  endif()
  list(JOIN row ", " row)
  string(APPEND rows "    {\"${name}\", {${width}, ${row}}},\n")
endforeach()
cmake_path(GET DATA FILENAME file)
file(WRITE ${SOURCE} "// Made by CMake from util/crc/${file}.
#include \"util/crc/CrcParameters.hpp\"

namespace Util::Crc {

namespace {

constexpr CatalogueEntry rows[] = {
${rows}};

}  // namespace

std::span<const CatalogueEntry> catalogue() {
    return rows;
}

}  // namespace Util::Crc
")
