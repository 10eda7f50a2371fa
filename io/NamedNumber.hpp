#pragma once

#include <cstdint>
#include <string_view>

namespace Io {

/// A number of a format for which it has a name.
struct NamedNumber {
    std::string_view name;
    std::uint32_t number;
};

}  // namespace Io
