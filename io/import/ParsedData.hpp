#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "buffer/Area.hpp"
#include "buffer/MemoryBuffer.hpp"
#include "platform/Memory.hpp"

namespace Io::Import {

/// The data bytes of a text format in file order, duplicates included, and the questions that a
/// reader is asked about them. Both text readers answer through here; `readerName` is theirs, for
/// the reports.
///
/// Bytes that follow each other in the file and in the address space are kept as one run.
class ParsedData {
public:
    /// @param capacity  an upper bound for the number of bytes; costs no memory before its use
    ParsedData(std::string_view readerName, std::size_t capacity);

    /// Takes in `bytes`, which the file has at `address` and behind.
    void append(std::uint64_t address, std::span<const std::uint8_t> bytes);

    /// Forgets everything.
    void clear();

    /// The parse is over: fixes the length of the span and what of the bytes can be seen.
    void finish();

    bool empty() const { return runs_.empty(); }
    std::uint64_t minAddress() const { return minAddress_; }
    std::uint64_t maxAddress() const { return maxAddress_; }
    std::uint64_t dataLength() const { return dataLength_; }

    /// Lets the span end at `address`; the bytes behind it stay.
    void limitTo(std::uint64_t address) { maxAddress_ = address; }

    Buffer::MemoryBuffer getMemory(std::uint64_t startAddress, std::uint64_t dataLength) const;

    /// The image of the whole span, for the last time: data of one run becomes the image and is
    /// forgotten here.
    Buffer::MemoryBuffer takeMemory();
    Buffer::AreaList getDataAreas() const;
    void fillMemoryBuffer(Buffer::MemoryBuffer& buffer) const;

    /// Four lines about the reader's data, numbers in decimal.
    std::string getInformation() const;

private:
    struct Run {
        std::uint64_t address;
        std::size_t offset;  ///< of its first byte in `bytes_`
        std::size_t length;
    };

    std::vector<Run> withoutHidden() const;
    Buffer::MemoryBuffer imageOf(std::uint64_t startAddress, std::uint64_t dataLength) const;
    void report(std::string_view operation, std::uint64_t startAddress, std::uint64_t length,
                std::string_view outcome) const;

    std::string_view readerName_;
    Platform::PageBlock bytes_;
    std::size_t size_ = 0;
    std::vector<Run> runs_;
    /// No run begins below the end of the one before it.
    bool isAscending_ = true;
    /// The runs in ascending order, without what later ones hide; empty while `runs_` itself is so.
    std::vector<Run> visibleRuns_;
    std::uint64_t minAddress_ = 0;
    std::uint64_t maxAddress_ = 0;
    std::uint64_t dataLength_ = 0;
};

/// The four lines that every reader tells of itself.
///
/// @param maxAddress  what the last line shows
std::string informationAbout(std::string_view readerName, std::uint64_t dataLength,
                             std::uint64_t minAddress, std::uint64_t maxAddress);

/// A new image; if the image itself is refused, so is the pattern that would have filled it, and
/// both say so.
Buffer::MemoryBuffer newImage(std::uint64_t startAddress, std::uint64_t dataLength);

/// The three parts of a report on a range that a reader refuses. The numbers stand in whatever
/// base the stream was left in.
///
/// @param behindMax  the address behind the last one that could have been asked for
void reportRange(std::string_view readerName, std::string_view operation,
                 const Buffer::Area& requested, std::string_view outcome, std::uint64_t minAddress,
                 std::uint64_t behindMax, const std::string& information);

}  // namespace Io::Import
