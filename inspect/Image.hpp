#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "buffer/Area.hpp"
#include "buffer/MemoryBuffer.hpp"
#include "facts/InputFormat.hpp"
#include "io/import/ReadOptions.hpp"
#include "io/import/SectionChoice.hpp"
#include "io/import/TessaronImportApi.hpp"

namespace Inspect {

/// A file as it was read.
struct Image {
    std::string path;  ///< as given
    Facts::InputFormat format;
    Buffer::MemoryBuffer data;  ///< of length 0 if the file has none
    std::optional<std::uint64_t> startAddress;

    /// The ranges of written addresses, ascending.
    Buffer::AreaList areas() const;

    /// The data, if it has all of `area`, or null.
    const Buffer::MemoryBuffer* dataWith(const Buffer::Area& area) const {
        return data.getArea().contains(area) ? &data : nullptr;
    }
};

/// Reads a file of any format, as files are in the field. What is odd about it is reported to the
/// listener in force; nothing is returned for a damaged file.
///
/// @param format   that of the file; nothing if name and contents decide
/// @param options  of which the rule for addresses that are there twice does not count
/// @throws Io::bad_open
/// @throws Io::Import::Malformed  after a report
std::optional<Image> openImage(const std::string& path,
                               std::optional<Facts::InputFormat> format = {},
                               const Io::Import::ReadOptions& options = {});

/// The same, without making an image of it; null for a damaged file.
std::unique_ptr<Io::Import::TessaronImportApi> openReader(const std::string& path,
                                                          std::optional<Facts::InputFormat> format,
                                                          const Io::Import::ReadOptions& options);

/// Reads the chosen sections of an ELF file.
///
/// @param addressUnit  the addresses of the file count words of that many bytes
/// @throws Io::bad_open
/// @throws Io::Import::Malformed  after a report
std::unique_ptr<Io::Import::TessaronImportApi> openSections(
    const std::string& path, const Io::Import::SectionChoice& sections, std::uint32_t addressUnit);

/// What `reader` has read of the file `path`, which it gives away. Two bytes for one address are
/// reported; the later one counts.
///
/// @param addressUnit  by which the file is read
Image imageOf(const std::string& path, Io::Import::TessaronImportApi& reader,
              std::uint32_t addressUnit = 1);

/// The name of a format for people; "no image" for a file that is not read.
std::string formatText(std::optional<Facts::InputFormat> format);

/// The areas in ascending order, joined where they overlap or at most `gap` addresses lie between
/// them.
Buffer::AreaList joined(Buffer::AreaList areas, std::uint64_t gap);

/// The number of addresses in `areas`.
std::uint64_t byteCount(const Buffer::AreaList& areas);

}  // namespace Inspect
