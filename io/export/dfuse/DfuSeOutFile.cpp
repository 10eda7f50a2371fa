#include "io/export/dfuse/DfuSeOutFile.hpp"

#include <algorithm>
#include <array>
#include <string_view>

#include "facts/Listener.hpp"
#include "io/DfuSe.hpp"
#include "util/crc/GenericCrc.hpp"

namespace Io::Export {

namespace {

using namespace DfuSe;

/// Output whose CRC goes along.
class CheckedOutput {
public:
    explicit CheckedOutput(PieceWriter& out) : out_(&out) {}

    void append(std::span<const std::uint8_t> bytes) {
        out_->append(bytes);
        // The register goes on, without the final xor.
        crc_ = ~Util::Crc::GenericCrc::crc32Reflected(bytes, crc_);
    }
    void append(std::string_view text) {
        append({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    }
    /// `count` bytes of `number`, least significant one first.
    void append(std::uint64_t number, std::size_t count) {
        std::array<std::uint8_t, 4> bytes{};
        for (std::size_t i = 0; i < count; ++i, number >>= 8U)
            bytes[i] = static_cast<std::uint8_t>(number);
        append(std::span(bytes).first(count));
    }
    std::uint32_t crc() const { return crc_; }

private:
    PieceWriter* out_;
    std::uint32_t crc_ = 0xFFFFFFFF;
};

void appendTargetPrefix(CheckedOutput& out, std::uint64_t bytes, std::uint64_t elements) {
    out.append("Target");
    out.append(0, 1);  // alternate setting
    out.append(0, 4);  // has no name
    constexpr std::array<std::uint8_t, targetNameSize> noName{};
    out.append(noName);
    out.append(bytes, 4);
    out.append(elements, 4);
}

}  // namespace

DfuSeOutFile::Contents DfuSeOutFile::contents() const {
    Contents all;
    for (const ImageView& image : images_)
        forStretches(image, [&all](const ImageView& stretch) {
            ++all.elements;
            all.bytes += elementPrefixSize + stretch.elements.size();
            all.end = std::max(all.end, stretch.startAddress + stretch.elements.size());
        });
    return all;
}

void DfuSeOutFile::saveToFile() {
    const Contents all = contents();
    const std::uint64_t size = prefixSize + targetPrefixSize + all.bytes;
    if (all.end > addressSpace32 || size >= addressSpace32) {
        Facts::report(Facts::AddressBeyondFormat{"DfuSe", fileName_, addressSpace32 - 1});
        return;
    }
    PieceWriter file = startOutput();
    CheckedOutput out(file);
    out.append("DfuSe");
    out.append(formatVersion, 1);
    out.append(size, 4);
    out.append(1, 1);  // number of targets
    appendTargetPrefix(out, all.bytes, all.elements);
    constexpr std::size_t pieceSize = std::size_t{1} << 16U;
    for (const ImageView& image : images_)
        forStretches(image, [&](const ImageView& stretch) {
            out.append(stretch.startAddress, 4);
            out.append(stretch.elements.size(), 4);
            forEffectiveBytes(stretch.elements, pieceSize,
                              [&](std::span<const std::uint8_t> bytes) { out.append(bytes); });
        });
    out.append(anyDevice, 2);
    out.append(style_.productId, 2);
    out.append(style_.vendorId, 2);
    out.append(dfuSeVersion, 2);
    out.append("UFD");
    out.append(suffixSize, 1);
    out.append(out.crc(), 4);
    file.finish();
}

std::optional<std::uint64_t> DfuSeOutFile::addressAt(const Buffer::MemoryBuffer& file,
                                                     std::uint64_t offset) {
    const auto numberAt = [&file](std::uint64_t at) {
        std::uint64_t number = 0;
        const Buffer::ElementView bytes = file.viewRange(at, 4);
        for (std::size_t i = bytes.size(); i-- != 0;) number = number << 8U | bytes.values()[i];
        return number;
    };
    std::uint64_t at = prefixSize + targetPrefixSize;
    while (at + elementPrefixSize <= offset && at + elementPrefixSize < file.getDataLength()) {
        const std::uint64_t length = numberAt(at + 4);
        if (offset - at - elementPrefixSize < length)
            return numberAt(at) + offset - at - elementPrefixSize;
        at += elementPrefixSize + length;
    }
    return std::nullopt;
}

}  // namespace Io::Export
