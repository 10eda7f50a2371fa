#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace Strict {

/// Whose options advice may name.
enum class OptionsOf : std::uint8_t {
    Statements,  ///< of a script
    Convert,
    Inspection  ///< `info`, `diff` and `map`
};

/// What the words for a fact depend on beside the fact.
struct Circumstances {
    /// Why the last attempt to open, create or write a file, or to start a program, failed, in the
    /// system's words; empty if the system gave no reason.
    std::function<std::string(std::string_view path)> reason;
    /// A statement makes something of that name, whether it succeeds or not.
    std::function<bool(std::string_view name)> isMade;
    /// Of statements, the variables and marks of the script may be wrong, too.
    OptionsOf options = OptionsOf::Statements;

    bool isScript() const { return options == OptionsOf::Statements; }
};

/// How a file whose addresses count words of `unit` bytes is read.
std::string adviceOnUnit(std::uint32_t unit, OptionsOf options);

}  // namespace Strict
