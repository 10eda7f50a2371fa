#include "io/import/IntelHexInFile.hpp"

#include <limits>

namespace Io::Import {

namespace {

constexpr std::uint64_t mostBytes = std::numeric_limits<std::uint64_t>::max();

}  // namespace

IntelHexInFile::IntelHexInFile(const std::string& path, TextLines lines)
    : RecordInFile(path, lines, parseLines<IntelHexParser>(lines).takeResult(), mostBytes) {}

IntelHexInFile::IntelHexInFile(const std::string& path, TextLines lines, IntelHexParser parser)
    : RecordInFile(path, lines, parser.takeResult(), mostBytes) {}

}  // namespace Io::Import
