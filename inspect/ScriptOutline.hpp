#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Inspect {

/// What a script expects and what it does with files, as far as the script itself says it.
struct ScriptOutline {
    struct Parameter {
        std::string name;
        std::optional<std::string> value;  ///< its default
        std::string remark;                ///< beside its line, or above it
        std::size_t line = 0;
    };
    std::size_t lines = 0;  ///< of its file
    std::vector<Parameter> parameters;
    /// Each once, in their order. What comes from a parameter without a default has its name.
    std::vector<std::string> includes;
    std::vector<std::string> inputs;
    std::vector<std::string> keys;  ///< files
    std::vector<std::string> images;
    std::vector<std::string> outputs;
};

/// The outline as lines for a terminal.
std::string textOf(const ScriptOutline& outline);

}  // namespace Inspect
