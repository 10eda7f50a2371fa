#pragma once

#include <cstddef>
#include <cstdint>

/// The parts of DfuSe files (STMicroelectronics, UM0391, "DfuSe File Format Specification"): a
/// prefix, targets with elements, and the suffix of the class specification (USB-IF, "Device Class
/// Specification for Device Firmware Upgrade", version 1.1, appendix B). Numbers are little-endian.
namespace Io::DfuSe {

// The prefix: "DfuSe", a byte of version, four of the size of the file without its suffix, and the
// number of targets.
inline constexpr std::size_t prefixSize = 11;
inline constexpr std::size_t versionAt = 5;
inline constexpr std::size_t imageSizeAt = 6;
inline constexpr std::size_t targetCountAt = 10;
inline constexpr std::uint8_t formatVersion = 1;

// A target: "Target", a byte of alternate setting, four that say whether it has a name, the name,
// the size of its elements and their number.
inline constexpr std::size_t targetPrefixSize = 274;
inline constexpr std::size_t targetNameSize = 255;
inline constexpr std::size_t targetSizeAt = 266;
inline constexpr std::size_t elementCountAt = 270;

// An element: its address and its size.
inline constexpr std::size_t elementPrefixSize = 8;

// The suffix: device, product, vendor and version in two bytes each, "UFD", its size and the CRC.
inline constexpr std::uint8_t suffixSize = 16;
inline constexpr std::size_t crcSize = 4;
inline constexpr std::uint32_t anyDevice = 0xFFFF;  ///< device, product or vendor
inline constexpr std::uint32_t dfuSeVersion = 0x011A;

}  // namespace Io::DfuSe
