#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "buffer/Area.hpp"
#include "buffer/MemoryBuffer.hpp"

namespace Inspect {

/// The written bytes of a file or of a run's image, wherever they lie in the address space.
///
/// The parts are ascending and do not overlap. A file whose data is spread over a large range has
/// several, so that the machine need not hold the range.
using Parts = std::vector<Buffer::MemoryBuffer>;

/// A file as it was read.
struct Image {
    std::string path;    ///< as given
    std::string format;  ///< "Intel HEX", "S-records", "ELF", "UF2", "TI-TXT", "raw bytes"
    Parts parts;
    std::optional<std::uint64_t> startAddress;

    /// The ranges of written addresses, ascending.
    Buffer::AreaList areas() const;
};

/// Reads a file of any format, as files are in the field. What is odd about it is reported to the
/// listener in force; nothing is returned for a damaged file.
///
/// @throws Io::bad_open
std::optional<Image> openImage(const std::string& path);

/// The format of a file's contents, in words: see `Image::format`.
///
/// @throws Io::bad_open
std::string formatOf(const std::string& path);

/// The areas in ascending order, joined where they overlap or less than `gap` lies between them.
Buffer::AreaList joined(Buffer::AreaList areas, std::uint64_t gap);

/// The number of addresses in `areas`.
std::uint64_t byteCount(const Buffer::AreaList& areas);

/// The part that has all of `area`, or null.
const Buffer::MemoryBuffer* partWith(const Parts& parts, const Buffer::Area& area);

/// "0x" and at least eight digits.
std::string addressText(std::uint64_t address);

/// "0x08000000 to 0x08000FFF": the first and the last address, or the only one.
std::string rangeText(const Buffer::Area& area);

/// "line 3", "lines 3 to 1,024".
std::string linesText(std::uint64_t first, std::uint64_t last);

/// "1 byte", "2 bytes"; thousands are separated by commas.
std::string countText(std::uint64_t count, const char* noun);

/// The number with commas between thousands.
std::string grouped(std::uint64_t number);

/// "16 bytes", "1.5 KiB", "3.0 MiB": a number of bytes for a quick look.
std::string sizeText(std::uint64_t bytes);

/// The text in HTML and SVG: marks are replaced, and control characters that XML does not have.
std::string escaped(std::string_view text);

}  // namespace Inspect
