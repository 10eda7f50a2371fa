#pragma once

#include <string>
#include <string_view>

namespace Strict {

/// Where a text first differs from the wanted one, for people: of JSON the value, as a JSON pointer
/// (RFC 6901), or the line. The texts are not the same.
std::string firstDifference(std::string_view found, std::string_view wanted);

}  // namespace Strict
