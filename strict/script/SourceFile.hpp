#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "strict/diagnostics/Diagnostic.hpp"

namespace Strict {

/// A part of a text.
struct TextSpan {
    std::size_t at = 0;
    std::size_t length = 0;

    std::size_t end() const { return at + length; }
    std::string_view in(std::string_view text) const { return text.substr(at, length); }
};

/// A file of a script as its author wrote it.
class SourceFile {
public:
    /// @param name  as diagnostics name it
    SourceFile(std::string name, std::string text);

    const std::string& name() const { return name_; }
    std::string_view text() const { return text_; }

    /// The place of a part of the text.
    Place placeOf(TextSpan part) const;

    /// Counted from 1.
    std::size_t lineOf(std::size_t offset) const;

private:
    std::size_t charactersBefore(std::size_t offset) const;
    std::size_t charactersBetween(std::size_t begin, std::size_t end) const;

    std::string name_;
    std::string text_;
    /// Made when the first line is asked for: a sound script needs none.
    mutable std::vector<std::size_t> lineStarts_;
    /// The characters before each block of the text, made like the lines.
    mutable std::vector<std::size_t> blocks_;
};

}  // namespace Strict
