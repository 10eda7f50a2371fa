#pragma once

#include "editor/Structure.hpp"
#include "lsp/Json.hpp"

namespace Lsp {

/// The kinds of tokens by the names that editors have colours for, and their modifiers.
Json legend();

/// The number of a kind in the legend.
std::size_t numberOf(Editor::TokenKind kind);

}  // namespace Lsp
