// In place of the other sources of this folder in a build without signatures: no key can be read,
// so there is never one to sign or verify with.
#include <utility>

#include "crypto/signature/Signature.hpp"

namespace Crypto {

struct SigningKey::Key {
    std::vector<std::uint8_t> signature;
    std::array<std::uint8_t, 32> fingerprint;
};

struct VerifyingKey::Key {
    bool isValid;
    std::array<std::uint8_t, 32> fingerprint;
};

SigningKey::SigningKey(std::unique_ptr<Key> key) : key_(std::move(key)) {}
SigningKey::SigningKey(SigningKey&& other) noexcept = default;
SigningKey& SigningKey::operator=(SigningKey&& other) noexcept = default;
SigningKey::~SigningKey() = default;

std::variant<SigningKey, KeyFault> SigningKey::read(std::span<const std::uint8_t> /*pem*/,
                                                    std::optional<std::string_view> /*passphrase*/,
                                                    std::optional<SignatureType> /*type*/) {
    return KeyFault::NotBuilt;
}

std::vector<std::uint8_t> SigningKey::sign(std::span<const std::uint8_t> /*message*/,
                                           SignatureForm /*form*/) const {
    return key_->signature;
}

std::array<std::uint8_t, 32> SigningKey::fingerprint() const {
    return key_->fingerprint;
}

VerifyingKey::VerifyingKey(std::unique_ptr<Key> key) : key_(std::move(key)) {}
VerifyingKey::VerifyingKey(VerifyingKey&& other) noexcept = default;
VerifyingKey& VerifyingKey::operator=(VerifyingKey&& other) noexcept = default;
VerifyingKey::~VerifyingKey() = default;

std::variant<VerifyingKey, KeyFault> VerifyingKey::read(
    std::span<const std::uint8_t> /*pem*/, std::optional<std::string_view> /*passphrase*/,
    std::optional<SignatureType> /*type*/) {
    return KeyFault::NotBuilt;
}

bool VerifyingKey::verify(std::span<const std::uint8_t> /*message*/,
                          std::span<const std::uint8_t> /*signature*/,
                          SignatureForm /*form*/) const {
    return key_->isValid;
}

std::vector<std::uint8_t> VerifyingKey::publicKey() const {
    return {key_->fingerprint.begin(), key_->fingerprint.end()};
}

std::array<std::uint8_t, 32> VerifyingKey::fingerprint() const {
    return key_->fingerprint;
}

}  // namespace Crypto
