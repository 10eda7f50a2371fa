#include "lsp/Legend.hpp"

#include <array>

namespace Lsp {

namespace {

/// By `Editor::TokenKind`.
constexpr std::array names{"comment",   "keyword", "decorator",  "function", "variable", "property",
                           "parameter", "macro",   "enumMember", "number",   "string"};

}  // namespace

Json legend() {
    return {{"tokenTypes", names}, {"tokenModifiers", {"declaration"}}};
}

std::size_t numberOf(Editor::TokenKind kind) {
    return static_cast<std::size_t>(kind);
}

}  // namespace Lsp
