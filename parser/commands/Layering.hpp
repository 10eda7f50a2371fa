#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "buffer/MemoryBuffer.hpp"
#include "buffer/Overlap.hpp"
#include "facts/Facts.hpp"
#include "io/import/TessaronImportApi.hpp"

/// Images that are laid over each other by a rule, as NEW_BUFFER and WRITE_FILE do it.
namespace Parser::WrapperLib {

/// What the images are laid over each other for.
struct LayeringTarget {
    Facts::Subject subject;
    std::string_view name;
};

/// Lays `part` over `result` by `rule`. Without a rule each element replaces the one before, as
/// `MemoryBuffer::overlay` does it; with one, only written elements count.
///
/// @param source  the name of `part`
/// @return false, after a report, if the rule refuses that
bool lay(Buffer::MemoryBuffer& result, const Buffer::MemoryBuffer& part, Buffer::OverlapRule rule,
         std::string_view source, const LayeringTarget& target);

/// Reports the overlap and returns true if the rule refuses it.
bool refuses(Buffer::OverlapRule rule, const Buffer::Overlap& overlap, std::string_view source,
             const LayeringTarget& target);

/// The same for an overlap within a file.
///
/// @param addressUnit  by which the file was read
bool refuses(Buffer::OverlapRule rule, const Buffer::Overlap& overlap, std::string_view path,
             const Io::Import::TessaronImportApi& file, std::uint32_t addressUnit,
             const LayeringTarget& target);

/// The rule looks for overlaps that it refuses.
constexpr bool isRefusing(Buffer::OverlapRule rule) {
    return rule == Buffer::OverlapRule::Same || rule == Buffer::OverlapRule::Error;
}

/// An image of a list, borrowed, and its name.
struct NamedImage {
    const Buffer::MemoryBuffer* image;
    std::string_view name;
};

/// Images in the order in which they are written. With a rule no two of them have an address in
/// common: those whose ranges overlap have become one, in the place of the first of them. Without
/// one they are what they were.
class Layers {
public:
    /// False, after a report, if the rule refuses an overlap.
    bool add(const std::vector<NamedImage>& images, Buffer::OverlapRule rule,
             const LayeringTarget& target);

    /// Valid while this object and the images live.
    const std::vector<const Buffer::MemoryBuffer*>& images() const { return images_; }

private:
    std::deque<Buffer::MemoryBuffer> merged_;
    std::vector<const Buffer::MemoryBuffer*> images_;
};

}  // namespace Parser::WrapperLib
