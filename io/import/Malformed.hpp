#pragma once

#include <cstdint>
#include <string_view>

#include "facts/Facts.hpp"
#include "io/File.hpp"

namespace Io::Import {

/// A file contradicts its format, which has been reported. Nothing of it is used.
struct Malformed : Io::exception {
    const char* what() const noexcept override { return "Malformed file"; }
};

/// Reports the fault and gives the file up.
///
/// @param where, number  as in Facts::FileMalformed
/// @throws Malformed
[[noreturn]] void refuse(Facts::InputFormat format, std::string_view file, Facts::FormatFault fault,
                         std::uint64_t where, std::uint64_t number = 0);

}  // namespace Io::Import
