#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "fuzz/PlatformInMemory.hpp"

namespace Fuzz {

/// One call of the program as text that a person can read and a fuzzer can mutate:
///
///     name=value
///     === script.tsn
///     PRINT_TEXT name
///     === firmware.hex
///     :00000001FF
///
/// The lines before the first one that begins with "=== " are the arguments. Each such line names a
/// file, whose contents end at the line feed before the next one. An input without such a line is a
/// script alone.
struct ScriptInput {
    static constexpr const char* scriptPath = "script.tsn";

    /// Adds the files to `machine`. A script is always among them.
    ScriptInput(const std::uint8_t* data, std::size_t size, Machine& machine);

    std::map<std::string, std::string> variables;  ///< from the arguments
};

}  // namespace Fuzz
