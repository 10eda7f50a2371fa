#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include "facts/InputFormat.hpp"
#include "inspect/RunRecord.hpp"

namespace Inspect {

/// Which line of a sound text file gave which addresses, in the order of the file. None for a
/// format without lines.
///
/// @param addressUnit  the addresses of the file count words of that many bytes
/// @throws Io::bad_open
std::vector<LineRun> lineRunsOf(const std::string& path, Facts::InputFormat format,
                                std::uint32_t addressUnit = 1);

/// All lines that gave an address, in the order of the file.
std::vector<std::uint64_t> linesAt(const std::vector<LineRun>& runs, std::uint64_t address);

/// The line among those from `firstLine` to `lastLine` that gave an address; 0 if none did. Of a
/// file that gives the address twice, they are the lines of one of its runs.
std::uint64_t lineAt(std::span<const LineRun> runs, std::uint64_t address,
                     std::uint64_t firstLine = 0,
                     std::uint64_t lastLine = std::numeric_limits<std::uint64_t>::max());

}  // namespace Inspect
