#pragma once

#include <span>
#include <string_view>

namespace CommandLine {

/// What the book says about a kind of diagnostics.
struct KindPage {
    std::string_view kind;
    std::string_view text;  ///< plain text, of whole lines
};

/// The pages of all kinds, in the order of their names. A test demands one for each kind.
std::span<const KindPage> kindPages();

}  // namespace CommandLine
