#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "buffer/Area.hpp"
#include "buffer/MemoryBuffer.hpp"
#include "inspect/Digest.hpp"
#include "inspect/Info.hpp"
#include "inspect/JsonText.hpp"
#include "inspect/Map.hpp"
#include "util/crc/CrcParameters.hpp"

namespace Inspect {

/// A file that a run read or wrote.
struct FileRecord {
    std::string path;
    std::string format;  ///< empty if the run did not read it as an image
    std::uint64_t size = 0;
    std::string sha256;
    Buffer::AreaList areas;                     ///< of data, ascending; of inputs only
    std::vector<std::string> images;            ///< that went into an output
    std::size_t line = 0;                       ///< of the statement in the script
    std::optional<std::uint64_t> startAddress;  ///< of an output, if the script gives one
    /// Of an output: the bytes of the words that its addresses count.
    std::uint32_t addressUnit = 1;
    std::uint32_t swappedWord = 1;  ///< of an output: the bytes of the words that are reversed
    std::string script = {};        ///< the included file that has the line; empty: the script
    bool isIncluded = false;        ///< an input that is a part of the script
    bool isStream = false;          ///< an output that leaves no file, such as a pipe or a device
    /// Of an output: the inputs that it depends on, as places in the list of the inputs, ascending.
    std::vector<std::size_t> sources = {};
};

/// Addresses that the lines of a text file from `firstLine` on gave, the same number of bytes each;
/// the last line may have fewer.
struct LineRun {
    Buffer::Area area;
    std::uint64_t firstLine = 0;
    std::uint64_t bytesPerLine = 1;
};

/// What made bytes of an image.
struct RangeOrigin {
    MapKind kind = MapKind::Data;
    std::size_t line = 0;  ///< of the statement in the script
    std::string file;      ///< the input file; empty if the statement itself made the bytes
    std::string script;    ///< the included file that has `line`; empty: the script
};

/// What a report says of a range beside its origin.
struct RangeDetails {
    std::vector<LineRun> lines;  ///< ascending, as far as the lines are regular
    std::string names;           ///< of the first and the last address; empty if nobody knows
};

/// A range of an image and where its bytes came from. There may be a million of them.
struct OriginRange {
    Buffer::Area area;
    std::size_t origin = 0;       ///< its place among those of the image
    std::uint64_t firstLine = 0;  ///< of the input file; 0 in a file without lines
    std::uint64_t lastLine = 0;
    std::unique_ptr<RangeDetails> details = {};  ///< null if they are not wanted

    std::span<const LineRun> lines() const {
        return details ? std::span<const LineRun>(details->lines) : std::span<const LineRun>();
    }
    std::string_view names() const { return details ? details->names : std::string_view(); }
};

/// An image at the end of a run; what it holds is borrowed.
struct ImageRecord {
    std::string name;
    const Buffer::MemoryBuffer* image = nullptr;
    std::vector<OriginRange> ranges;            ///< ascending, without overlap; gaps are left out
    std::vector<RangeOrigin> origins;           ///< of the ranges, most of which have a common one
    std::optional<std::uint64_t> startAddress;  ///< of the program, that its input file names
    Digest digest = {};                         ///< as `digestOf` has it, if it is wanted

    const RangeOrigin& originOf(const OriginRange& range) const { return origins[range.origin]; }
};

/// What computes a CRC, a hash or a signature.
struct Algorithm {
    std::string name;     ///< a name of the catalogue, a type of the language, or Custom
    std::string meaning;  ///< what the type computes, in words; empty if the name says it
    std::optional<Util::Crc::CrcParameters> crc;  ///< unless it is a sum or a hash
    Util::Crc::CrcAlignment alignment = Util::Crc::CrcAlignment::Right;
};

/// A CRC, a hash or a signature.
struct ValueRecord {
    struct Place {
        std::string image;
        Buffer::Area area;
        std::size_t line;
        std::string byteOrder;    ///< LittleEndian or BigEndian; empty unless it is a CRC
        std::string script = {};  ///< the included file that has the line; empty: the script
    };
    struct Source {
        std::string image;
        Buffer::AreaList areas;  ///< in the order in which their bytes count
    };
    std::string name;
    std::string kind;   ///< "crc", "hash" or "signature"
    std::string bytes;  ///< hexadecimal digits, in the order in which PRINT_CRC shows them
    std::size_t line = 0;
    Algorithm algorithm;
    std::vector<Source> sources;  ///< what it covers, in their order
    std::uint32_t wordSize = 1;   ///< bytes that are taken in reverse order
    std::vector<Place> places;    ///< where it was put
    std::string script = {};      ///< the included file that has `line`; empty: the script
    std::string publicKey = {};   ///< SHA-256 of that of a signature which this run has made
};

/// A file that the script includes.
struct IncludedScript {
    std::string path;  ///< as the record has it
    std::string text;  ///< as it was written
    std::string file;  ///< its path on this machine
};

/// All that went into a run and came out of it.
struct RunRecord {
    std::string scriptPath;
    std::string scriptText;    ///< as it was written
    std::string scriptSha256;  ///< of its file
    std::vector<IncludedScript> included;
    std::map<std::string, std::string> variables;
    std::vector<FileRecord> inputs;
    std::vector<ImageRecord> images;
    std::vector<ValueRecord> values;
    std::vector<FileRecord> outputs;
    std::vector<Remark> remarks;
};

/// The digests of the whole image, or of what has a byte or a filler if the gaps are too wide: they
/// would take longer than all the rest of a run.
Digest digestOf(const ImageRecord& record);

/// The image as a row of a map.
MapRow rowOf(const ImageRecord& image);

/// The record as JSON, see docs/manifest.schema.json: no time, and no path that depends on the
/// machine unless a script gives one. The images have their digests.
void writeManifest(const RunRecord& record, const TakeText& take);

/// The same as one text.
std::string manifestOf(const RunRecord& record);

/// The record as a page that needs nothing else.
std::string reportOf(const RunRecord& record);

}  // namespace Inspect
