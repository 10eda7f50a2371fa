#include "strict/Comparison.hpp"

#include <algorithm>
#include <string>

#include "platform/Files.hpp"

namespace Strict {

namespace {

/// Where two texts differ first, as a line and a byte.
std::string firstDifference(std::string_view disk, std::string_view made) {
    const auto [left, right] = std::ranges::mismatch(disk, made);
    const auto at = static_cast<std::size_t>(left - disk.begin());
    const auto line = std::ranges::count(made.substr(0, std::min(at, made.size())), '\n') + 1;
    return "first at byte " + std::to_string(at) + ", line " + std::to_string(line);
}

}  // namespace

bool compareWithDisk(const OutputSet& files, DiagnosticSink& sink) {
    bool isEqual = true;
    for (const std::string& path : files.outputs()) {
        const auto disk = Platform::readFile(path);
        const std::string made = files.contentsOf(path);
        if (disk && disk->text() == made) continue;
        isEqual = false;
        sink.take({Severity::Error,
                   "differs",
                   path + (disk ? " is not what the script makes today" : " is missing"),
                   std::nullopt,
                   disk ? firstDifference(disk->text(), made) : "",
                   {}});
    }
    return isEqual;
}

}  // namespace Strict
