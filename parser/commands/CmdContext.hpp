#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "buffer/Area.hpp"
#include "buffer/MemoryBuffer.hpp"
#include "io/import/InputReading.hpp"
#include "parser/commands/ImageObserver.hpp"
#include "parser/commands/SymbolFiles.hpp"
#include "util/crc/ByteList.hpp"

namespace Parser::WrapperLib {

using Buffer::Area;
using Buffer::AreaList;
using Util::Crc::ByteList;

/// What the statements of one run share: what they have made, by name, and the choices of the front
/// end. An entry is inserted once: a second one of the same name changes nothing, and none is
/// replaced or removed during a run.
struct CmdContext {
    std::map<std::string, std::string> variables;         ///< text replacements of the script
    std::map<std::string, ByteList> crcs;                 ///< made by NEW_CRC
    std::map<std::string, ByteList> hashes;               ///< made by NEW_HASH
    std::map<std::string, ByteList> signatures;           ///< made by NEW_SIGNATURE
    std::map<std::string, Buffer::MemoryBuffer> buffers;  ///< made by NEW_BUFFER
    SymbolFiles symbols;                                  ///< that numbers ask for
    /// Of encrypted private keys; borrowed, as its owner wipes it.
    std::optional<std::string_view> passphrase = {};
    /// How FROM_FILE reads, borrowed.
    const Io::Import::InputReading* reading = &Io::Import::classicReading();
    /// Longest range that NEW_BUFFER takes from a file that is not raw. A file beyond it is more
    /// likely two records far apart, for which not every machine has the memory.
    std::uint64_t longestFile = 0xFFFFFFF;
    /// Learns what goes into the images, borrowed; null for nobody.
    ImageObserver* observer = nullptr;
};

}  // namespace Parser::WrapperLib
