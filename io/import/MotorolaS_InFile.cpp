#include "io/import/MotorolaS_InFile.hpp"

namespace Io::Import {

namespace {

constexpr std::uint64_t mostBytes = 0xFFFFFFFF;

}  // namespace

MotorolaS_InFile::MotorolaS_InFile(const std::string& path, TextLines lines)
    : RecordInFile(path, lines, parseLines<MotorolaS_Parser>(lines).takeResult(), mostBytes) {}

MotorolaS_InFile::MotorolaS_InFile(const std::string& path, TextLines lines,
                                   MotorolaS_Parser parser)
    : RecordInFile(path, lines, parser.takeResult(), mostBytes) {}

}  // namespace Io::Import
