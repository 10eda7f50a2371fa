#include "io/import/uf2/Uf2InFile.hpp"

#include <algorithm>
#include <map>
#include <utility>

#include "facts/Listener.hpp"
#include "io/InFile.hpp"
#include "io/Uf2.hpp"
#include "io/import/Malformed.hpp"

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
    std::vector<DeviceFamily> families;
};

/// Takes the blocks of a file one after the other.
class Uf2InFile::Parser final : public BinaryInFile {
public:
    Parser(const std::string& path, Platform::InputFile file,
           std::optional<std::uint32_t> chosenFamily)
        : BinaryInFile(path, std::move(file)),
          blocks_(fileSize() / Uf2::blockSize),
          chosenFamily_(chosenFamily),
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
        requireAll();
        requireChoice();
        if (data_.empty()) refuseFile(FormatFault::NothingToLoad, 0);
        data_.finish();
        return {std::move(data_), families()};
    }

private:
    /// Of devices; nothing for blocks that name none.
    using Family = std::optional<std::uint32_t>;

    /// Blocks that are numbered together.
    struct Numbering {
        std::vector<bool> used;  ///< a bit for each number
        std::uint64_t seen = 0;

        bool isComplete() const { return seen == used.size(); }
    };

    struct Fault {
        FormatFault fault;
        std::uint64_t where;
        std::uint64_t number;
    };

    /// The blocks for a family that belong into the main flash.
    struct Part {
        std::uint64_t firstBlock;
        std::uint64_t blocks = 0;
        Buffer::AreaList areas = {};
    };

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
        if (index_ == 0 && blocks_ > 1 && hasFamily && isSacrificed(*block, data)) {
            ++sacrificed_;
            return;
        }
        const Family family = hasFamily ? Family(block->family) : std::nullopt;
        count(*block, family);
        if ((block->flags & (Uf2::notMainFlash | Uf2::fileContainer)) != 0) return;
        constexpr std::uint64_t addressSpaceEnd = std::uint64_t{1} << 32U;
        if (block->address + std::uint64_t{block->size} > addressSpaceEnd)
            refuseFile(FormatFault::AddressTooHigh, index_, block->address);
        add({block->address, block->size}, family);
        if (!chosenFamily_ || family == chosenFamily_) data_.append(block->address, data);
    }

    /// Those of each family are numbered for themselves, since a boot loader ignores the others.
    /// Or all blocks of the file are, those without a family as well.
    void count(const Block& block, const Family& family) {
        if (!fault_) fault_ = number(block, numberings_[family], counted_);
        std::uint64_t countedThrough = 0;
        if (isNumberedThrough_)
            isNumberedThrough_ = !number(block, numberedThrough_, countedThrough);
    }

    /// What is wrong with the number or the count of a block, or nothing.
    ///
    /// @param counted  the blocks that all numberings of the file count; a new one is added
    std::optional<Fault> number(const Block& block, Numbering& numbering,
                                std::uint64_t& counted) const {
        if (numbering.seen == 0) {
            const std::uint64_t all = blocks_ - sacrificed_;
            counted += block.count;
            if (counted > all) return Fault{FormatFault::BlockCountWrong, all, counted};
            numbering.used.resize(block.count);
        }
        const std::uint64_t count = numbering.used.size();
        if (block.count != count) return Fault{FormatFault::BlockCountWrong, count, block.count};
        if (block.number >= count || numbering.used[block.number])
            return Fault{FormatFault::BlockNumberWrong, index_, block.number};
        numbering.used[block.number] = true;
        ++numbering.seen;
        return std::nullopt;
    }

    void requireAll() const {
        if (isNumberedThrough_ && numberedThrough_.isComplete()) return;
        if (fault_) refuseFile(fault_->fault, fault_->where, fault_->number);
        for (const auto& [family, numbering] : numberings_)
            if (!numbering.isComplete())
                refuseFile(FormatFault::BlockCountWrong, numbering.seen, numbering.used.size());
    }

    void add(const Buffer::Area& area, const Family& family) {
        Part& part = parts_.try_emplace(family, Part{index_}).first->second;
        ++part.blocks;
        if (!part.areas.empty() && part.areas.back().end() == area.start)
            part.areas.back().length += area.length;
        else
            part.areas.push_back(area);
    }

    /// An address for which two families have bytes, or nothing.
    std::optional<std::uint64_t> sharedAddress() const {
        std::vector<std::pair<Buffer::Area, const Part*>> all;
        for (const auto& [family, part] : parts_)
            for (const Buffer::Area& area : part.areas)
                if (area.length != 0) all.emplace_back(area, &part);
        std::ranges::sort(all, {}, [](const auto& one) { return one.first.start; });
        // The area that reaches furthest: as long as nothing is shared, it hides those of others.
        auto last = all.begin();
        for (auto next = all.begin(); next != all.end(); ++next) {
            if (next->second != last->second && next->first.start < last->first.end())
                return next->first.start;
            if (next->first.end() > last->first.end()) last = next;
        }
        return std::nullopt;
    }

    /// There are blocks of the family that was chosen. Without a choice, families share no address.
    void requireChoice() const {
        if (chosenFamily_ && !parts_.contains(chosenFamily_))
            refuseFamilies(Facts::FamilyFault::Unknown, 0);
        if (chosenFamily_ || parts_.size() < 2) return;
        if (const auto shared = sharedAddress())
            refuseFamilies(Facts::FamilyFault::Shared, *shared);
    }

    [[noreturn]] void refuseFamilies(Facts::FamilyFault fault, std::uint64_t address) const {
        constexpr std::size_t mostNamed = 8;
        std::string names;
        const std::vector<DeviceFamily> all = families();
        for (std::size_t i = 0; i < all.size() && i < mostNamed; ++i)
            names += (i == 0 ? "" : ", ") + all[i].name;
        if (all.size() > mostNamed)
            names += " and " + std::to_string(all.size() - mostNamed) + " more";
        Facts::report(
            Facts::FamilyUnfit{fileName_, fault, chosenFamily_.value_or(0), address, names});
        throw Malformed();
    }

    std::vector<DeviceFamily> families() const {
        std::vector<const std::pair<const Family, Part>*> sorted;
        for (const auto& entry : parts_) sorted.push_back(&entry);
        std::ranges::sort(sorted, {}, [](const auto* entry) { return entry->second.firstBlock; });
        std::vector<DeviceFamily> all;
        if (parts_.size() == 1 && parts_.contains(std::nullopt)) return all;
        for (const auto* const entry : sorted) {
            const auto& [family, part] = *entry;
            std::uint64_t start = part.areas.front().start;
            std::uint64_t end = start;
            for (const Buffer::Area& area : part.areas) {
                start = std::min(start, area.start);
                end = std::max(end, area.end());
            }
            all.push_back(
                {family ? Uf2::nameOf(*family) : "no family", part.blocks, {start, end - start}});
        }
        return all;
    }

    std::uint64_t blocks_;  ///< that the file has
    Family chosenFamily_;
    ParsedData data_;
    std::uint64_t index_ = 0;
    std::uint64_t sacrificed_ = 0;  ///< blocks without meaning
    std::map<Family, Numbering> numberings_;
    std::uint64_t counted_ = 0;   ///< blocks, by all of these
    std::optional<Fault> fault_;  ///< of these
    Numbering numberedThrough_;   ///< that of all blocks together
    bool isNumberedThrough_ = true;
    std::map<Family, Part> parts_;
};

Uf2InFile::Uf2InFile(const std::string& path, std::optional<std::uint32_t> family)
    : Uf2InFile(path, openInput(path), family) {}

Uf2InFile::Uf2InFile(const std::string& path, Platform::InputFile file,
                     std::optional<std::uint32_t> family)
    : Uf2InFile(Parser(path, std::move(file), family).parse()) {}

Uf2InFile::Uf2InFile(Contents contents)
    : AddressedData(std::move(contents.data), std::nullopt),
      families_(std::move(contents.families)) {}

}  // namespace Io::Import
