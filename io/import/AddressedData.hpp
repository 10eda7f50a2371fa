#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "io/import/OverlapSearch.hpp"
#include "io/import/ParsedData.hpp"
#include "io/import/TessaronImportApi.hpp"

namespace Io::Import {

/// The answers of a reader that takes all of its file or none: of its data and a start address. An
/// area takes what the file has in it, also one that begins below the data.
class AddressedData : public TessaronImportApi {
public:
    Facts::InputFormat getFormat() const override { return data_.format(); }
    std::uint64_t getMinAddress() const override { return data_.minAddress(); }
    std::uint64_t getDataLength() const override { return data_.dataLength(); }
    Buffer::MemoryBuffer getMemory() const override {
        return getMemory(getMinAddress(), getDataLength());
    }
    Buffer::MemoryBuffer takeMemory() override { return data_.takeMemory(); }
    Buffer::MemoryBuffer getMemory(std::uint64_t start, std::uint64_t length) const override {
        return length == 0 ? Buffer::MemoryBuffer(start, 0) : data_.imageOf({start, length});
    }
    std::optional<Buffer::Overlap> findOverlap(bool isDifferent) const override {
        return Import::findOverlap(data_, isDifferent);
    }
    std::uint32_t likelyAddressUnit() const override { return data_.likelyAddressUnit(); }
    void preferFirst() override { data_.preferFirst(); }
    bool hasStartAddress() const override { return startAddress_.has_value(); }
    std::uint64_t getStartAddress() const override { return startAddress_.value_or(0); }
    Buffer::AreaList getDataAreas() const override { return data_.getDataAreas(); }
    void fillMemoryBuffer(Buffer::MemoryBuffer& buffer) const override {
        data_.fillMemoryBuffer(buffer);
    }

    std::span<const SourceRun> getSourceRuns() const override { return sources_; }

protected:
    /// The file's data, finished.
    ///
    /// @param sources  the lines of the data, if its format has lines
    AddressedData(ParsedData data, std::optional<std::uint64_t> startAddress,
                  std::vector<SourceRun> sources = {})
        : data_(std::move(data)), startAddress_(startAddress), sources_(std::move(sources)) {}

private:
    ParsedData data_;
    std::optional<std::uint64_t> startAddress_;
    std::vector<SourceRun> sources_;
};

}  // namespace Io::Import
