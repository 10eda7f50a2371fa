#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "buffer/Area.hpp"
#include "buffer/MemoryBuffer.hpp"

namespace Inspect {

/// SHA-256 (FIPS 180-4) of bytes that come in pieces.
class Sha256 {
public:
    Sha256();
    ~Sha256();
    Sha256(const Sha256&) = delete;
    Sha256& operator=(const Sha256&) = delete;

    void take(std::string_view bytes);

    /// Ends the message; called once. 64 lower-case hexadecimal digits.
    std::string finish();

private:
    class Hash;
    std::unique_ptr<Hash> hash_;
};

/// CRC-32/ISO-HDLC and SHA-256 (FIPS 180-4) of the same bytes.
struct Digest {
    std::uint32_t crc32 = 0;
    std::string sha256;  ///< 64 lower-case hexadecimal digits
};

/// Takes bytes in pieces and computes both digests of all of them.
class Digester {
public:
    void take(std::span<const std::uint8_t> bytes);

    /// Ends the message; called once.
    Digest finish();

private:
    std::uint32_t crc_ = 0;
    Sha256 sha_;
};

/// The digests of the effective bytes of a whole image.
Digest digestOf(const Buffer::MemoryBuffer& image);

/// The digests of the effective bytes of areas of an image, one after the other.
Digest digestOf(const Buffer::MemoryBuffer& image, const Buffer::AreaList& areas);

/// What CRC-32 is of all data that ends with its own CRC-32, lowest byte first: the remainder that
/// the published catalogue gives as residue, 0xDEBB20E3, after the final xor. It tells no data from
/// other.
inline constexpr std::uint32_t crc32OfSelfChecked = 0x2144DF1C;

/// SHA-256 of a text, as in `Digest`.
std::string sha256Of(std::string_view text);

}  // namespace Inspect
