#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "buffer/Area.hpp"
#include "buffer/MemoryBuffer.hpp"
#include "buffer/Overlap.hpp"
#include "facts/InputFormat.hpp"

namespace Io::Import {

/// Data that follows each other in the file and in the address space, and the lines that give it.
struct SourceRun {
    Buffer::Area area;
    std::uint64_t firstLine;  ///< counted from 1; 0 in a file without lines
    std::uint64_t lastLine;
    bool operator==(const SourceRun&) const = default;
};

/// A name of a file with what it stands for.
struct Symbol {
    enum class Kind : std::uint8_t { Other, Data, Function };
    std::string name;
    std::uint64_t address;
    std::uint64_t size;
    Kind kind;
    bool isGlobal;    ///< known to all files that were linked, not to one alone
    bool isAbsolute;  ///< a number that no section has, not the address of something
};

/// What a file has for one of the families of devices that it names.
struct DeviceFamily {
    std::string name;
    std::uint64_t blocks;  ///< that belong into the main flash
    Buffer::Area range;    ///< from the lowest address of their data to the highest
};

/// A file as a set of addressed bytes, whatever its format. A reader parses the whole file in its
/// constructor, which reports what is wrong with it; all other operations are queries. A reader of
/// a faulty file holds less data, or none: length 0 at address 0.
class TessaronImportApi {
public:
    TessaronImportApi() = default;
    TessaronImportApi(const TessaronImportApi&) = delete;
    TessaronImportApi& operator=(const TessaronImportApi&) = delete;

    /// The format that the file was read in.
    virtual Facts::InputFormat getFormat() const = 0;

    /// The lowest address of the file's data.
    virtual std::uint64_t getMinAddress() const = 0;

    /// The span of the file's data in bytes, gaps included.
    virtual std::uint64_t getDataLength() const = 0;

    /// An image of the whole span.
    virtual Buffer::MemoryBuffer getMemory() const = 0;

    /// The same as the last query: the reader may give away what it holds.
    virtual Buffer::MemoryBuffer takeMemory() { return getMemory(); }

    /// An image of the given range, with what the file has in it as written elements and default
    /// elements elsewhere. Only a start below the file's data is refused, with a report and an
    /// empty image at address 0; a length of 0 never is.
    virtual Buffer::MemoryBuffer getMemory(std::uint64_t startAddress,
                                           std::uint64_t dataLength) const = 0;

    /// The file names an execution start address.
    virtual bool hasStartAddress() const = 0;

    /// That address; 0 when there is none.
    virtual std::uint64_t getStartAddress() const = 0;

    /// The contiguous runs of the data, ascending. An address that the file gives twice ends a run
    /// and opens another.
    virtual Buffer::AreaList getDataAreas() const = 0;

    /// Fills `buffer` from the file, over the buffer's range, as MemoryBuffer::fillMemory does with
    /// default elements for what the file lacks. Refused with a report unless the whole range lies
    /// in the file's span.
    virtual void fillMemoryBuffer(Buffer::MemoryBuffer& buffer) const = 0;

    /// The runs of the data in the order of the file, of which the last that has an address counts.
    /// Empty if the reader keeps no lines.
    virtual std::span<const SourceRun> getSourceRuns() const { return {}; }

    /// The first range that the file gives a second time, in the order in which it does so.
    ///
    /// @param isDifferent  with other bytes
    virtual std::optional<Buffer::Overlap> findOverlap(bool /*isDifferent*/) const { return {}; }

    /// Lets the first of several bytes for one address count from now on, in place of the last one.
    virtual void preferFirst() {}

    /// What the header of the file says; empty without one.
    virtual std::string getHeader() const { return {}; }

    /// The parts that the file names of its data, in its order; none if its format has no parts.
    virtual Buffer::AreaList getSegments() const { return {}; }

    /// The symbols of the file; none if it has none.
    ///
    /// @throws Malformed  after a report
    virtual std::vector<Symbol> getSymbols() const { return {}; }

    /// The families of devices that the file has blocks for, in the order of their first blocks.
    virtual std::vector<DeviceFamily> getFamilies() const { return {}; }

    /// What else the file says of the devices that it is for, in words.
    virtual std::vector<std::string> getDevices() const { return {}; }

    /// The bytes of the words that the addresses of the file seem to count; 1 if they count bytes.
    virtual std::uint32_t likelyAddressUnit() const { return 1; }

    virtual ~TessaronImportApi() = default;
};

}  // namespace Io::Import
