#include "io/import/dfuse/DfuSeInFile.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <utility>

#include "io/DfuSe.hpp"
#include "io/InFile.hpp"
#include "io/import/Malformed.hpp"
#include "util/Hex.hpp"
#include "util/crc/GenericCrc.hpp"

namespace Io::Import {

namespace {

using Facts::FormatFault;
using namespace DfuSe;

using Bytes = std::span<const std::uint8_t>;

/// The number in the `size` bytes at `at`, which lie in `bytes`.
std::uint32_t numberAt(Bytes bytes, std::size_t at, std::size_t size) {
    std::uint32_t number = 0;
    for (std::size_t i = size; i-- != 0;) number = number << 8U | bytes[at + i];
    return number;
}

std::string_view textAt(Bytes bytes, std::size_t at, std::size_t size) {
    return {reinterpret_cast<const char*>(bytes.data()) + at, size};
}

}  // namespace

struct DfuSeInFile::Contents {
    ParsedData data;
    Buffer::AreaList elements;
    std::vector<std::string> devices;
};

/// Takes the parts of a file one after the other.
class DfuSeInFile::Parser final : public BinaryInFile {
public:
    Parser(const std::string& path, Platform::InputFile file)
        : BinaryInFile(path, std::move(file)),
          contents_{
              ParsedData(Facts::InputFormat::DfuSe, static_cast<std::size_t>(fileSize())), {}, {}} {
    }

    Contents parse() {
        std::array<std::uint8_t, prefixSize> prefix{};
        get(0, prefix);
        if (!looksLike(textAt(prefix, 0, prefix.size()))) refusePrefix(prefix);
        takeSuffix();
        if (numberAt(prefix, imageSizeAt, 4) != end_)
            refuseFile(FormatFault::LengthWrong, imageSizeAt, numberAt(prefix, imageSizeAt, 4));
        std::uint64_t at = prefixSize;
        for (unsigned target = 0; target < prefix[targetCountAt]; ++target) at = takeTarget(at);
        // What no target has would be lost.
        if (at != end_) refuseFile(FormatFault::LengthWrong, imageSizeAt, end_);
        if (contents_.data.empty()) refuseFile(FormatFault::NothingToLoad, 0);
        contents_.data.finish();
        return std::move(contents_);
    }

private:
    [[noreturn]] void refuseFile(FormatFault fault, std::uint64_t where,
                                 std::uint64_t number = 0) const {
        refuse(Facts::InputFormat::DfuSe, fileName_, fault, where, number);
    }

    [[noreturn]] void refusePrefix(Bytes prefix) const {
        if (!textAt(prefix, 0, prefix.size()).starts_with("DfuSe"))
            refuseFile(FormatFault::MagicMissing, 0);
        refuseFile(FormatFault::VariantUnknown, versionAt, prefix[versionAt]);
    }

    /// Reads a part of the file, from the byte `at` on.
    void get(std::uint64_t at, std::span<std::uint8_t> out) const {
        if (at > fileSize() || out.size() > fileSize() - at)
            refuseFile(FormatFault::Truncated, at, out.size());
        // A failure has been reported.
        if (read(at, out) != out.size()) throw Malformed();
    }

    /// The same, from what is in front of the suffix.
    void getPart(std::uint64_t at, std::span<std::uint8_t> out) const {
        if (at > end_ || out.size() > end_ - at) refuseFile(FormatFault::Truncated, at, out.size());
        get(at, out);
    }

    void takeSuffix() {
        if (fileSize() < prefixSize + suffixSize)
            refuseFile(FormatFault::Truncated, prefixSize, suffixSize);
        std::array<std::uint8_t, suffixSize> suffix{};
        const std::uint64_t start = fileSize() - suffixSize;
        get(start, suffix);
        constexpr std::size_t markAt = 8;
        constexpr std::size_t sizeAt = 11;
        if (textAt(suffix, markAt, 3) != "UFD")
            refuseFile(FormatFault::MagicMissing, start + markAt);
        // A later version of the suffix may be longer, and its new fields come first.
        if (suffix[sizeAt] < suffixSize || suffix[sizeAt] > fileSize() - prefixSize)
            refuseFile(FormatFault::LengthWrong, start + sizeAt, suffix[sizeAt]);
        end_ = fileSize() - suffix[sizeAt];
        const std::uint32_t found = numberAt(suffix, suffixSize - crcSize, crcSize);
        const std::uint32_t computed = checksum();
        if (found != computed) refuseFile(FormatFault::ChecksumWrong, found, computed);
        const std::uint32_t product = numberAt(suffix, 2, 2);
        const std::uint32_t vendor = numberAt(suffix, 4, 2);
        if (vendor != anyDevice || product != anyDevice)
            contents_.devices.push_back("USB vendor 0x" + Util::hexNumber(vendor, 4) +
                                        ", product 0x" + Util::hexNumber(product, 4));
    }

    /// The CRC of the file without its last bytes, which have it. The register starts with ones and
    /// is not inverted at the end.
    std::uint32_t checksum() const {
        constexpr std::uint64_t pieceSize = std::uint64_t{1} << 16U;
        const std::uint64_t end = fileSize() - crcSize;
        std::vector<std::uint8_t> piece(static_cast<std::size_t>(std::min(pieceSize, end)));
        std::uint32_t crc = 0xFFFFFFFF;
        for (std::uint64_t at = 0; at < end; at += piece.size()) {
            piece.resize(static_cast<std::size_t>(std::min(pieceSize, end - at)));
            get(at, piece);
            crc = ~Util::Crc::GenericCrc::crc32Reflected(piece, crc);
        }
        return crc;
    }

    /// Takes the target at byte `at`, and returns where the next one begins.
    std::uint64_t takeTarget(std::uint64_t at) {
        std::array<std::uint8_t, targetPrefixSize> prefix{};
        getPart(at, prefix);
        if (textAt(prefix, 0, 6) != "Target") refuseFile(FormatFault::MagicMissing, at);
        const std::uint64_t sizeAt = at + targetSizeAt;
        noteName(prefix);
        at += targetPrefixSize;
        const std::uint64_t start = at;
        for (std::uint32_t i = numberAt(prefix, elementCountAt, 4); i != 0; --i)
            at = takeElement(at);
        const std::uint32_t size = numberAt(prefix, targetSizeAt, 4);
        if (at - start != size) refuseFile(FormatFault::LengthWrong, sizeAt, size);
        return at;
    }

    void noteName(Bytes target) {
        constexpr std::size_t settingAt = 6;
        constexpr std::size_t isNamedAt = 7;
        constexpr std::size_t nameAt = 11;
        if (numberAt(target, isNamedAt, 4) == 0) return;
        const std::string_view name = textAt(target, nameAt, targetNameSize);
        contents_.devices.push_back("alternate setting " + std::to_string(target[settingAt]) +
                                    ", " + std::string(name.substr(0, name.find('\0'))));
    }

    std::uint64_t takeElement(std::uint64_t at) {
        std::array<std::uint8_t, elementPrefixSize> prefix{};
        getPart(at, prefix);
        const std::uint32_t address = numberAt(prefix, 0, 4);
        const std::uint32_t size = numberAt(prefix, 4, 4);
        at += elementPrefixSize;
        if (size > end_ - at) refuseFile(FormatFault::Truncated, at, size);
        constexpr std::uint64_t addressSpaceEnd = std::uint64_t{1} << 32U;
        if (address + std::uint64_t{size} > addressSpaceEnd)
            refuseFile(FormatFault::AddressTooHigh, at, address);
        if (size == 0) return at;
        contents_.elements.push_back({address, size});
        contents_.data.appendRead(address, size,
                                  [&](std::span<std::uint8_t> out) { get(at, out); });
        return at + size;
    }

    std::uint64_t end_ = 0;  ///< where the suffix begins
    Contents contents_;
};

DfuSeInFile::DfuSeInFile(const std::string& path) : DfuSeInFile(path, openInput(path)) {}

DfuSeInFile::DfuSeInFile(const std::string& path, Platform::InputFile file)
    : DfuSeInFile(Parser(path, std::move(file)).parse()) {}

DfuSeInFile::DfuSeInFile(Contents contents)
    : AddressedData(std::move(contents.data), std::nullopt),
      elements_(std::move(contents.elements)),
      devices_(std::move(contents.devices)) {}

}  // namespace Io::Import
