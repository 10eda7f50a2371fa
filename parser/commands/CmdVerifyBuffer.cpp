#include "parser/commands/CmdVerifyBuffer.hpp"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <optional>
#include <span>

#include "buffer/Overlap.hpp"
#include "facts/Listener.hpp"
#include "parser/commands/Conventions.hpp"

namespace Parser::WrapperLib {

/// Counts the addresses at which an image has other bytes than it should have, and notes the first
/// of them.
class CmdVerifyBuffer::Comparison {
public:
    /// Gives the bytes that belong at the addresses from `start` on.
    using Wanted = std::function<void(std::uint64_t start, std::span<std::uint8_t> bytes)>;

    explicit Comparison(const Buffer::MemoryBuffer& image) : image_(&image) {}

    Area imageArea() const { return image_->getArea(); }

    void compare(const Area& area, const Wanted& wanted) {
        if (area.length == 0) return;
        isEmpty_ = false;
        const Area image = imageArea();
        const auto common = image.length == 0 ? std::nullopt : area.clippedTo(image);
        if (!common) return addMissing(area, wanted);
        addMissing({area.start, common->start - area.start}, wanted);
        for (std::uint64_t at = common->start; at < common->end(); at += pieceSize)
            comparePiece(at, std::min<std::uint64_t>(pieceSize, common->end() - at), wanted);
        addMissing({common->end(), area.end() - common->end()}, wanted);
    }

    /// Reports what differs. True if all is the same.
    bool report(const std::string& name, const std::string& other) const {
        if (isEmpty_) Facts::report(Facts::NothingCompared{name});
        if (differing_ != 0)
            Facts::report(Facts::ImageDiffers{name, other, address_, found_, wanted_, differing_});
        return !isEmpty_ && differing_ == 0;
    }

private:
    static constexpr std::size_t pieceSize = std::size_t{1} << 16U;

    void comparePiece(std::uint64_t start, std::uint64_t length, const Wanted& wanted) {
        // Most areas are as short as a CRC.
        actual_.resize(std::max<std::size_t>(actual_.size(), length));
        expected_.resize(actual_.size());
        const std::span<std::uint8_t> right(expected_.data(), length);
        wanted(start, right);
        image_->viewRange(start, length).copyBytes(actual_.data());
        for (std::size_t i = 0; i < length; ++i)
            if (actual_[i] != right[i]) add({start + i, 1}, actual_[i], right[i]);
    }

    /// Counts addresses that the image does not have.
    void addMissing(const Area& area, const Wanted& wanted) {
        if (area.length == 0) return;
        std::uint8_t first = 0;
        wanted(area.start, std::span(&first, 1));
        add(area, std::nullopt, first);
    }

    void add(const Area& area, std::optional<std::uint8_t> found, std::uint8_t wanted) {
        if (differing_ == 0) {
            address_ = area.start;
            found_ = found;
            wanted_ = wanted;
        }
        differing_ += area.length;
    }

    const Buffer::MemoryBuffer* image_;
    std::vector<std::uint8_t> actual_;  ///< of the longest piece so far
    std::vector<std::uint8_t> expected_;
    bool isEmpty_ = true;
    std::uint64_t differing_ = 0;
    std::uint64_t address_ = 0;  ///< the first one
    std::optional<std::uint8_t> found_;
    std::uint8_t wanted_ = 0;
};

void CmdVerifyBuffer::setString(std::string text) {
    pattern_.setText(std::move(text));
    isString_ = true;
}

bool CmdVerifyBuffer::execute(CmdContext& context) {
    return guarded(Facts::Subject::Buffer, bufferName_, Facts::Work::Verified,
                   [&] { return verify(context); });
}

bool CmdVerifyBuffer::verify(CmdContext& context) const {
    const Buffer::MemoryBuffer* const image = findBuffer(context, bufferName_);
    if (image == nullptr) return false;
    Comparison comparison(*image);
    if (!otherName_.empty()) {
        const Buffer::MemoryBuffer* const other = findBuffer(context, otherName_);
        if (other == nullptr) return false;
        compareImages(comparison, *other);
    } else {
        const auto pattern = pattern_.bytesFor(context, image->getByteOrder());
        if (!pattern) return false;
        comparePattern(comparison, *pattern);
    }
    return comparison.report(bufferName_, otherName_);
}

/// Gaps of the other image say nothing.
void CmdVerifyBuffer::compareImages(Comparison& comparison,
                                    const Buffer::MemoryBuffer& other) const {
    const auto wanted = [&other](std::uint64_t start, std::span<std::uint8_t> bytes) {
        other.viewRange(start, bytes.size()).copyBytes(bytes.data());
    };
    const Area whole = other.getArea();
    if (whole.length == 0) return;
    for (const Area& area : areas_.empty() ? AreaList{whole} : areas_) {
        const auto part = area.length == 0 ? std::nullopt : area.clippedTo(whole);
        if (!part) continue;
        for (const Area& written : Buffer::writtenAreas(other, *part))
            comparison.compare(written, wanted);
    }
}

void CmdVerifyBuffer::comparePattern(Comparison& comparison, const ByteList& pattern) const {
    if (pattern.empty()) return;
    const AreaList areas = areas_.empty() ? AreaList{comparison.imageArea()} : areas_;
    for (const Area& area : areas) {
        const auto wanted = [&pattern, &area](std::uint64_t start, std::span<std::uint8_t> bytes) {
            auto at = static_cast<std::size_t>((start - area.start) % pattern.size());
            for (std::uint8_t& byte : bytes) {
                byte = pattern[at];
                if (++at == pattern.size()) at = 0;
            }
        };
        comparison.compare(isString_ ? Area{area.start, pattern.size()} : area, wanted);
    }
}

}  // namespace Parser::WrapperLib
