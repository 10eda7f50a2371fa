#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string_view>
#include <vector>

#include "buffer/MemoryBuffer.hpp"

namespace Parser::WrapperLib {

/// What WRITE_FILE fills beside what its images have. Runs are what the file has of the images: the
/// images themselves, or what was written if the other addresses are skipped.
struct Padding {
    std::optional<std::uint32_t> shortGaps = {};  ///< gaps of up to that many bytes are filled
    std::optional<std::uint32_t> alignment = {};  ///< then runs begin and end at its multiples

    /// The area up to the next multiples of the alignment, which must be addresses.
    Buffer::Area aligned(const Buffer::Area& area) const;

    bool isGiven() const { return shortGaps || alignment; }

    /// Replaces `images` by some that have all that goes to the file, with what is filled, and that
    /// are apart. Where images have an address in common, the later one's byte counts. Filled bytes
    /// are the fillers of their addresses, or beyond an image the filler of its nearest address;
    /// they count as written, so that they are not skipped.
    ///
    /// @param padded     keeps the new images
    /// @param isSkipping  addresses that nothing wrote are left out of the file
    /// @param file       its path, for reports
    /// @return false after a report
    bool apply(std::vector<const Buffer::MemoryBuffer*>& images,
               std::deque<Buffer::MemoryBuffer>& padded, bool isSkipping,
               std::string_view file) const;

private:
    /// Images whose runs may touch, by their numbers, and the range of all of them.
    struct Group {
        Buffer::Area range;
        std::vector<std::size_t> members;
    };

    std::optional<std::vector<Group>> groupsOf(
        const std::vector<const Buffer::MemoryBuffer*>& images) const;
    Buffer::AreaList filledRuns(const Buffer::MemoryBuffer& image) const;
    void fill(Buffer::MemoryBuffer& image) const;
};

}  // namespace Parser::WrapperLib
