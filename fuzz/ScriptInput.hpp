#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "fuzz/PlatformInMemory.hpp"

namespace Fuzz {

/// One call of the program as a text that can be read and mutated as such:
///
///     name=value
///     === script.tsn
///     PRINT_TEXT name
///     === firmware.hex
///     :00000001FF
///
/// In front of the first line that begins with "=== " stand the arguments, one a line. Each such
/// line names a file, which reaches up to the line feed in front of the next one. An input without
/// such a line is a script and nothing else.
struct ScriptInput {
    static constexpr const char* scriptPath = "script.tsn";

    /// Puts the files onto `machine`; a script there always is.
    ScriptInput(const std::uint8_t* data, std::size_t size, Machine& machine);

    std::map<std::string, std::string> variables;  ///< those of the arguments
};

}  // namespace Fuzz
