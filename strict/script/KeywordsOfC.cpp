#include "strict/script/KeywordsOfC.hpp"

#include <algorithm>
#include <array>

namespace Strict {

namespace {

constexpr auto keywords = std::to_array<std::string_view>({
    "_Alignas",
    "_Alignof",
    "_Atomic",
    "_Bool",
    "_Complex",
    "_Generic",
    "_Imaginary",
    "_Noreturn",
    "_Static_assert",
    "_Thread_local",
    "alignas",
    "alignof",
    "and",
    "and_eq",
    "asm",
    "auto",
    "bitand",
    "bitor",
    "bool",
    "break",
    "case",
    "catch",
    "char",
    "char16_t",
    "char32_t",
    "char8_t",
    "class",
    "co_await",
    "co_return",
    "co_yield",
    "compl",
    "concept",
    "const",
    "const_cast",
    "consteval",
    "constexpr",
    "constinit",
    "continue",
    "decltype",
    "default",
    "delete",
    "do",
    "double",
    "dynamic_cast",
    "else",
    "enum",
    "explicit",
    "export",
    "extern",
    "false",
    "float",
    "for",
    "friend",
    "goto",
    "if",
    "inline",
    "int",
    "long",
    "mutable",
    "namespace",
    "new",
    "noexcept",
    "not",
    "not_eq",
    "nullptr",
    "operator",
    "or",
    "or_eq",
    "private",
    "protected",
    "public",
    "register",
    "reinterpret_cast",
    "requires",
    "restrict",
    "return",
    "short",
    "signed",
    "sizeof",
    "static",
    "static_assert",
    "static_cast",
    "struct",
    "switch",
    "template",
    "this",
    "thread_local",
    "throw",
    "true",
    "try",
    "typedef",
    "typeid",
    "typename",
    "union",
    "unsigned",
    "using",
    "virtual",
    "void",
    "volatile",
    "wchar_t",
    "while",
    "xor",
    "xor_eq",
});
static_assert(std::ranges::is_sorted(keywords));

}  // namespace

bool isKeywordOfC(std::string_view word) {
    return std::ranges::binary_search(keywords, word);
}

bool isTypeOfStdint(std::string_view word) {
    if (word.starts_with('u')) word.remove_prefix(1);
    if (!word.starts_with("int") || !word.ends_with("_t")) return false;
    word.remove_prefix(3);
    for (const std::string_view kind : {"_least", "_fast"})
        if (word.starts_with(kind)) {
            word.remove_prefix(kind.size());
            break;
        }
    constexpr auto widths =
        std::to_array<std::string_view>({"8_t", "16_t", "32_t", "64_t", "ptr_t", "max_t"});
    return std::ranges::find(widths, word) != widths.end();
}

}  // namespace Strict
