#pragma once

#include <span>
#include <string_view>

/// Formats of files with data for flash that the system knows and does not read.
namespace Io::Formats {

/// A format that is not read.
struct ForeignFormat {
    std::string_view name;                           ///< what such a file is, with an article
    std::span<const std::string_view> endings = {};  ///< of its files' names, in lower case
    bool isText = true;
    /// A file that begins with `head` has the format.
    bool (*looksLike)(std::string_view head) = nullptr;
};

std::span<const ForeignFormat> foreignFormats();

}  // namespace Io::Formats
