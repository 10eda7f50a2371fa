#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "io/import/ParsedData.hpp"
#include "io/import/TessaronImportApi.hpp"

namespace Io::Import {

/// The data of a file and the lines that gave it.
class LinedData {
public:
    LinedData(Facts::InputFormat format, std::size_t capacity) : bytes_(format, capacity) {}

    /// Appends `bytes`, which line `number` has for the addresses from `address` on.
    void append(std::uint64_t address, std::span<const std::uint8_t> bytes, std::uint64_t number) {
        if (bytes.empty()) return;
        bytes_.append(address, bytes);
        noteLines(bytes.size(), number, number);
    }

    /// Appends the first `size` bytes in the room of `bytes`, which the lines from `first` to
    /// `last` have and which belong to `address` and the bytes after it.
    void appendInPlace(std::uint64_t address, std::size_t size, std::uint64_t first,
                       std::uint64_t last) {
        bytes_.appendInPlace(address, size);
        noteLines(size, first, last);
    }

    /// Discards all data and gives its memory back.
    void clear() {
        bytes_.clear();
        sources_ = {};
    }

    ParsedData& bytes() { return bytes_; }
    const ParsedData& bytes() const { return bytes_; }

    /// The runs of the data in the order of the file; they stay when the bytes are taken.
    const std::vector<SourceRun>& sources() const { return sources_; }
    std::vector<SourceRun> takeSources() { return std::move(sources_); }

private:
    void noteLines(std::size_t size, std::uint64_t first, std::uint64_t last) {
        if (bytes_.runs().size() != sources_.size())
            sources_.push_back({{bytes_.runs().back().area.start, 0}, first, last});
        sources_.back().area.length += size;
        sources_.back().lastLine = last;
    }

    ParsedData bytes_;
    std::vector<SourceRun> sources_;
};

}  // namespace Io::Import
