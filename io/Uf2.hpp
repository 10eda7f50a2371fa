#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "io/NamedNumber.hpp"

/// Blocks of UF2 files and the families of devices (Microsoft, "USB Flashing Format (UF2)",
/// https://github.com/microsoft/uf2).
namespace Io::Uf2 {

inline constexpr std::size_t blockSize = 512;
inline constexpr std::size_t largestPayload = 476;
/// Data bytes of a block that is written: every published boot loader takes this many.
inline constexpr std::size_t payloadSize = 256;

inline constexpr std::uint32_t notMainFlash = 0x00000001;
inline constexpr std::uint32_t fileContainer = 0x00001000;
inline constexpr std::uint32_t familyPresent = 0x00002000;

/// A block without its data.
struct Block {
    std::uint32_t flags;
    std::uint32_t address;  ///< in the flash, of the first data byte
    std::uint32_t size;     ///< of the data, in bytes
    std::uint32_t number;   ///< counted from 0
    std::uint32_t count;    ///< of all blocks of the file
    std::uint32_t family;   ///< meaningful with the flag `familyPresent`
};

/// The head of the block of 512 bytes, or nothing if one of its three marks is missing.
std::optional<Block> readBlock(std::span<const std::uint8_t> bytes);

/// The data bytes of a block of 512 bytes.
std::span<const std::uint8_t> payloadOf(std::span<const std::uint8_t> bytes, const Block& block);

/// Writes a block of 512 bytes.
///
/// @param data  `block.size` bytes; zeros follow them
void writeBlock(std::span<std::uint8_t> out, const Block& block,
                std::span<const std::uint8_t> data);

/// A kind of device.
using Family = NamedNumber;

/// The families of the published list, in its order.
std::span<const Family> families();

/// The name of a family and its number, or the number alone if it is not of the published list.
std::string nameOf(std::uint32_t family);

}  // namespace Io::Uf2
