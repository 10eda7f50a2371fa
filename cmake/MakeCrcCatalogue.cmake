# Run with cmake -P: writes the C++ file SOURCE, which defines Util::Crc::catalogue() with the rows
# of DATA. C++ has no literal of more than 64 bits, so wider numbers are made of two.
file(STRINGS ${DATA} lines REGEX "^[^#]")
foreach(line IN LISTS lines)
  string(REPLACE "\t" ";" fields "${line}")
  list(GET fields 0 1 2 3 4 5 6 row)
  list(LENGTH fields count)
  set(aliases "")
  if(count GREATER 8)
    list(GET fields 8 aliases)
  endif()
  list(POP_FRONT row name width)
  if(width GREATER 64)
    list(TRANSFORM row REPLACE "^0x(.*)(................)$" "wide(0x\\1, 0x\\2)")
  endif()
  list(JOIN row ", " row)
  string(APPEND rows "    {\"${name}\", {${width}, ${row}}, \"${aliases}\"},\n")
endforeach()
cmake_path(GET DATA FILENAME file)
file(WRITE ${SOURCE} "// Made by CMake from util/crc/${file}.
#include \"util/crc/CrcParameters.hpp\"

namespace Util::Crc {

namespace {

constexpr CrcNumber wide(std::uint64_t high, std::uint64_t low) {
    return CrcNumber{high} << 64 | low;
}

constexpr CatalogueEntry rows[] = {
${rows}};

}  // namespace

std::span<const CatalogueEntry> catalogue() {
    return rows;
}

}  // namespace Util::Crc
")
