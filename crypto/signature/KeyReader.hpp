#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <variant>

#include "crypto/signature/Signature.hpp"

namespace Botan {
class Private_Key;
class Public_Key;
}  // namespace Botan

namespace Crypto {

/// As SigningKey::read, with the key as the library has it.
std::variant<std::unique_ptr<Botan::Private_Key>, KeyFault> readPrivateKey(
    std::span<const std::uint8_t> pem, std::optional<std::string_view> passphrase,
    std::optional<SignatureType> type);

/// As VerifyingKey::read; of a private key, nothing but the public part is kept.
std::variant<std::unique_ptr<Botan::Public_Key>, KeyFault> readPublicKey(
    std::span<const std::uint8_t> pem, std::optional<std::string_view> passphrase,
    std::optional<SignatureType> type);

/// The deterministic type of a key that one of the two has read.
SignatureType typeOf(const Botan::Public_Key& key);

}  // namespace Crypto
