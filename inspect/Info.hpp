#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "buffer/Area.hpp"
#include "inspect/Digest.hpp"
#include "inspect/Image.hpp"
#include "inspect/Names.hpp"
#include "inspect/RecordCounts.hpp"
#include "inspect/ScriptOutline.hpp"

namespace Inspect {

/// Something odd, or a fault, in words.
struct Remark {
    std::string severity;  ///< "error", "warning" or "note"
    std::string name;      ///< the kind; may be empty
    std::string text;
    std::string file;          ///< empty if no file is to blame
    std::uint64_t line = 0;    ///< counted from 1; 0 for the file as a whole
    std::uint64_t column = 0;  ///< counted from 1; 0 for the whole line
    std::string hint;          ///< may be empty
};

/// An area of data and its digests.
struct AreaInfo {
    Buffer::Area area;
    Digest digest;
};

/// A part of an ELF file that is loaded, or a symbol of one.
struct Loaded {
    Buffer::Area area;
    std::string kind;  ///< of a symbol: "data", "function" or "label"
    std::string name;  ///< of a symbol
};

/// What there is to know of a file.
struct Info {
    std::string path;
    std::optional<Facts::InputFormat> format;  ///< nothing for a file that is not read
    std::uint64_t fileSize = 0;
    std::string header;  ///< what the file says of itself, without blanks around it
    RecordCounts records;
    bool isRead = false;  ///< false for a damaged file, which has no areas
    std::vector<AreaInfo> areas;
    Digest digest;  ///< of the data of all areas, ascending
    std::optional<std::uint64_t> startAddress;
    std::vector<Io::Import::DeviceFamily> families;  ///< that it has blocks for
    std::vector<std::string> devices;  ///< what else the file says of those that it is for
    std::vector<Loaded> segments;      ///< of an ELF file, in the order of its program headers
    std::vector<Loaded> symbols;       ///< of an ELF file, by address, if they were asked for
    std::vector<Remark> remarks;
    Names names;                          ///< of what is at its addresses, if anybody knows
    std::optional<ScriptOutline> script;  ///< of a script, which has no areas
};

/// Reads a file and computes all but the remarks; what is odd goes to the listener in force.
///
/// @param format  that of the file; nothing if name and contents decide
/// @param withSymbols  also lists the symbols of an ELF file
/// @param options  as for openImage
/// @throws Io::bad_open
/// @throws Io::Import::Malformed  after a report
Info infoAbout(const std::string& path, std::optional<Facts::InputFormat> format, bool withSymbols,
               const Io::Import::ReadOptions& options = {});

/// A table for a terminal of `width` columns: digests are cut to fit, or left out where too little
/// of them would remain. With 0, nothing is cut.
std::string textOf(const Info& info, std::size_t width);

/// A JSON array with one object a file.
std::string jsonOf(const std::vector<Info>& files);

}  // namespace Inspect
