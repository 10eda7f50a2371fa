#include "io/import/uf2/Uf2InFile.hpp"

#include <algorithm>
#include <utility>

#include "io/InFile.hpp"
#include "io/Uf2.hpp"
#include "io/import/Malformed.hpp"
#include "util/Hex.hpp"

namespace Io::Import {

namespace {

using Facts::FormatFault;
using Uf2::Block;

/// A block that means nothing: it comes first in a file for the RP2350, whose boot loader may lose
/// its first block (erratum RP2350-E10), and has a count of its own.
bool isSacrificed(const Block& block, std::span<const std::uint8_t> data) {
    constexpr std::uint32_t absoluteFamily = 0xE48BFF57;
    constexpr std::uint8_t filling = 0xEF;
    return block.family == absoluteFamily && block.number == 0 && block.count == 2 &&
           std::ranges::all_of(data, [](std::uint8_t byte) { return byte == filling; });
}

}  // namespace

struct Uf2InFile::Contents {
    ParsedData data;
    std::optional<std::uint32_t> family;
};

/// Takes the blocks of a file one after the other.
class Uf2InFile::Parser final : public BinaryInFile {
public:
    Parser(const std::string& path, Platform::InputFile file)
        : BinaryInFile(path, std::move(file)),
          blocks_(fileSize() / Uf2::blockSize),
          data_(Facts::InputFormat::Uf2, static_cast<std::size_t>(blocks_) * Uf2::largestPayload) {}

    Uf2InFile::Contents parse() {
        if (fileSize() % Uf2::blockSize != 0 || fileSize() == 0)
            refuseFile(FormatFault::SizeNotWhole, fileSize(), Uf2::blockSize);
        constexpr std::size_t pieceBlocks = 2048;
        std::vector<std::uint8_t> piece(static_cast<std::size_t>(
            std::min<std::uint64_t>(blocks_, pieceBlocks) * Uf2::blockSize));
        for (index_ = 0; index_ < blocks_;) {
            const std::size_t got = read(index_ * Uf2::blockSize, piece);
            if (got < Uf2::blockSize) throw Malformed();
            for (std::size_t at = 0; at + Uf2::blockSize <= got; at += Uf2::blockSize, ++index_)
                take(std::span(piece).subspan(at, Uf2::blockSize));
        }
        if (seen_ != count_) refuseFile(FormatFault::BlockCountWrong, seen_, count_);
        if (data_.empty()) refuseFile(FormatFault::NothingToLoad, 0);
        data_.finish();
        return {std::move(data_), hasFamily_ ? family_ : std::nullopt};
    }

private:
    [[noreturn]] void refuseFile(FormatFault fault, std::uint64_t where,
                                 std::uint64_t number = 0) const {
        refuse(Facts::InputFormat::Uf2, fileName_, fault, where, number);
    }

    void take(std::span<const std::uint8_t> bytes) {
        const std::optional<Block> block = Uf2::readBlock(bytes);
        if (!block) refuseFile(FormatFault::MagicMissing, index_ * Uf2::blockSize);
        if (block->size > Uf2::largestPayload)
            refuseFile(FormatFault::PayloadTooLong, index_, block->size);
        const auto data = Uf2::payloadOf(bytes, *block);
        const bool hasFamily = (block->flags & Uf2::familyPresent) != 0;
        if (index_ == 0 && blocks_ > 1 && hasFamily && isSacrificed(*block, data)) return;
        count(*block);
        if ((block->flags & (Uf2::notMainFlash | Uf2::fileContainer)) != 0) return;
        if (!family_) family_ = hasFamily ? block->family : 0;
        hasFamily_ = hasFamily;
        if (*family_ != (hasFamily ? block->family : 0))
            refuseFile(FormatFault::FamiliesMixed, index_, block->family);
        constexpr std::uint64_t addressSpaceEnd = std::uint64_t{1} << 32U;
        if (block->address + std::uint64_t{block->size} > addressSpaceEnd)
            refuseFile(FormatFault::AddressTooHigh, index_, block->address);
        data_.append(block->address, data);
    }

    void count(const Block& block) {
        if (numbers_.empty()) {
            if (block.count > blocks_)
                refuseFile(FormatFault::BlockCountWrong, blocks_, block.count);
            count_ = block.count;
            numbers_.resize(count_);
        }
        if (block.count != count_) refuseFile(FormatFault::BlockCountWrong, count_, block.count);
        if (block.number >= count_ || numbers_[block.number])
            refuseFile(FormatFault::BlockNumberWrong, index_, block.number);
        numbers_[block.number] = true;
        ++seen_;
    }

    std::uint64_t blocks_;  ///< that the file has
    ParsedData data_;
    std::uint64_t index_ = 0;
    std::optional<std::uint32_t> family_;  ///< of the blocks so far, 0 without one
    bool hasFamily_ = false;
    std::uint32_t count_ = 0;  ///< that each block gives
    std::vector<bool> numbers_;
    std::uint64_t seen_ = 0;
};

Uf2InFile::Uf2InFile(const std::string& path) : Uf2InFile(path, openInput(path)) {}

Uf2InFile::Uf2InFile(const std::string& path, Platform::InputFile file)
    : Uf2InFile(Parser(path, std::move(file)).parse()) {}

Uf2InFile::Uf2InFile(Contents contents)
    : AddressedData(std::move(contents.data), std::nullopt), family_(contents.family) {}

std::vector<std::string> Uf2InFile::getDevices() const {
    if (!family_) return {};
    const std::string number = "0x" + Util::hexWord(*family_);
    const auto known = std::ranges::find(Uf2::families(), *family_, &Uf2::Family::number);
    if (known == Uf2::families().end()) return {number};
    return {std::string(known->name) + " (" + number + ")"};
}

}  // namespace Io::Import
