#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace Crypto {

/// A block of a PEM file (RFC 7468): what is between its BEGIN and its END line.
struct PemBlock {
    std::string_view label;  ///< such as PRIVATE KEY
    std::string_view body;   ///< in base64, in old files with headers before it

    /// Whether the body is encrypted as OpenSSL did before PKCS#8 (RFC 1421, section 4.6.1.1).
    bool hasEncryptionHeader() const;
};

/// The first block that has a key. Nothing if there is none, or if an earlier one has no end.
std::optional<PemBlock> findKey(std::span<const std::uint8_t> pem);

}  // namespace Crypto
