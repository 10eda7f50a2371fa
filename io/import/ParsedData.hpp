#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "buffer/Area.hpp"
#include "buffer/MemoryBuffer.hpp"
#include "facts/Facts.hpp"
#include "platform/Memory.hpp"

namespace Io::Import {

/// The data bytes of a text format in file order, duplicates included, and the answers of a reader
/// to all questions about them.
///
/// Bytes that follow each other in the file and in the address space are kept as one run.
class ParsedData {
public:
    /// Bytes that follow each other in the file and in the address space.
    struct Run {
        Buffer::Area area;
        std::size_t offset;  ///< of its first byte among all; a later run of the file has more
    };

    /// @param reader    the format, for reports
    /// @param capacity  an upper bound for the number of bytes, for which memory is reserved when
    ///                  the first one comes
    ParsedData(Facts::InputFormat reader, std::size_t capacity)
        : reader_(reader), capacity_(capacity) {}

    /// Lets the addresses of the file count words of `bytes` bytes; those of the data always count
    /// bytes. Called before the first byte is appended.
    void setAddressUnit(std::uint32_t bytes) { addressUnit_ = bytes; }
    std::uint32_t addressUnit() const { return addressUnit_; }

    /// Appends `bytes`, which the file has from `address` on.
    void append(std::uint64_t address, std::span<const std::uint8_t> bytes);

    /// Room for what the rest of the file holds, and beyond it for what a decoder may overwrite.
    /// What is put there becomes data by `appendInPlace`. Not before some bytes have been appended.
    std::uint8_t* room() const { return reinterpret_cast<std::uint8_t*>(bytes_.data()) + size_; }

    /// Appends the first `size` bytes in `room`, which belong to `address` and the bytes after it.
    void appendInPlace(std::uint64_t address, std::size_t size) {
        if (size == 0) return;
        if (!runs_.empty() && runs_.back().area.end() == address)
            runs_.back().area.length += size;
        else
            beginRun({address, size});
        maxAddress_ = std::max(maxAddress_, address + size - 1);
        size_ += size;
    }

    /// Appends `length` bytes, not none, that the file has from `address` on and that `read` puts
    /// into the span that it is given.
    template <class Read>
    void appendRead(std::uint64_t address, std::size_t length, Read read) {
        reserve();
        read(std::span(room(), length));
        appendInPlace(address * addressUnit_, length);
    }

    /// Discards all bytes and gives their memory back.
    void clear();

    /// Ends the parse: fixes the length of the span and which of the bytes are visible.
    void finish();

    Facts::InputFormat format() const { return reader_; }
    bool empty() const { return runs_.empty(); }
    std::uint64_t minAddress() const { return minAddress_; }
    std::uint64_t maxAddress() const { return maxAddress_; }
    std::uint64_t dataLength() const { return dataLength_; }

    /// Lets the span end at `address`; the bytes beyond it stay.
    void limitTo(std::uint64_t address) { maxAddress_ = address; }

    Buffer::MemoryBuffer getMemory(std::uint64_t startAddress, std::uint64_t dataLength) const;

    /// The same for any range, whether it begins below the data or not.
    Buffer::MemoryBuffer imageOf(const Buffer::Area& range) const;

    /// The image of the whole span, for the last time: data of one run becomes the image and is
    /// discarded here.
    Buffer::MemoryBuffer takeMemory();
    Buffer::AreaList getDataAreas() const;
    void fillMemoryBuffer(Buffer::MemoryBuffer& buffer) const;

    /// The runs in the order of the file.
    const std::vector<Run>& runs() const { return runs_; }

    /// The data of a run.
    std::span<const std::uint8_t> bytesOf(const Run& run) const {
        return {reinterpret_cast<const std::uint8_t*>(bytes_.data()) + run.offset, run.area.length};
    }

    /// An address is given more than once. Known after `finish`.
    bool hasOverlaps() const;

    /// The bytes of the words that the addresses of the file seem to count, as most of its runs
    /// begin within the run before where they would begin if that ended: 2 or 4, with the unit by
    /// which they have been multiplied already. 1 if they count bytes, or words of more than 4.
    std::uint32_t likelyAddressUnit() const;

    /// Lets the first of several bytes for one address count, in place of the last one. Called
    /// after `finish`.
    void preferFirst();

    /// Four lines about the reader's data, numbers in decimal.
    std::string getInformation() const;

private:
    void reserve();
    void beginRun(const Buffer::Area& area);
    std::vector<Run> visibleParts(bool isFirstVisible) const;
    Buffer::Area span() const { return {minAddress_, maxAddress_ - minAddress_ + 1}; }
    void report(Facts::ReadOperation operation, const Buffer::Area& requested) const;

    Facts::InputFormat reader_;
    std::size_t capacity_;
    std::uint32_t addressUnit_ = 1;
    Platform::PageBlock bytes_;
    std::size_t size_ = 0;
    std::vector<Run> runs_;
    /// Every run begins beyond the end of the one before it.
    bool isAscending_ = true;
    /// The parts of runs that no later run hides, ascending; not used while `isAscending_`.
    std::vector<Run> visible_;
    std::uint64_t minAddress_ = 0;
    std::uint64_t maxAddress_ = 0;
    std::uint64_t dataLength_ = 0;
};

}  // namespace Io::Import
