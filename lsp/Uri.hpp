#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Lsp {

/// The path of a file URI (RFC 8089); nothing of another one.
std::optional<std::string> pathOf(std::string_view uri);

}  // namespace Lsp
