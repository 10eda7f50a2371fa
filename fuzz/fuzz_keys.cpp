// Reads keys of any bytes, with and without a passphrase, and verifies by what is one.

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <variant>
#include <vector>

#include "crypto/signature/Signature.hpp"
#include "fuzz/Check.hpp"

namespace {

using namespace Crypto;
using Fuzz::check;

constexpr std::array types{SignatureType::Ed25519, SignatureType::EcdsaP256_Sha256,
                           SignatureType::EcdsaP384_Sha384, SignatureType::RsaPss_Sha256,
                           SignatureType::RsaPkcs1_Sha256};
constexpr std::array<std::uint8_t, 3> message{'a', 'b', 'c'};

/// A key signs what its public part verifies.
void checkKey(std::span<const std::uint8_t> pem, SignatureType type, const SigningKey& key) {
    const auto read = VerifyingKey::read(pem, "correct horse", type);
    const auto* const other = std::get_if<VerifyingKey>(&read);
    check(other != nullptr, "a private key has a public one");
    check(other->fingerprint() == key.fingerprint(), "both are one key");
    const auto signature = key.sign(message, SignatureForm::Der);
    check(other->verify(message, signature, SignatureForm::Der), "a signature is right");
    check(!other->verify(std::span(message).first(2), signature, SignatureForm::Der),
          "a signature is of one message");
}

}  // namespace

/// The input is a key file, a zero byte and a signature.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::uint8_t> all(data, data + size);
    const auto zero = std::ranges::find(all, 0);
    const std::vector<std::uint8_t> pem(all.begin(), zero);
    const std::vector<std::uint8_t> signature(zero == all.end() ? zero : zero + 1, all.end());
    for (const SignatureType type : types) {
        const auto key = SigningKey::read(pem, "correct horse", type);
        if (const auto* const known = std::get_if<SigningKey>(&key)) checkKey(pem, type, *known);
        const auto other = VerifyingKey::read(pem, {}, type);
        if (const auto* const known = std::get_if<VerifyingKey>(&other))
            for (const SignatureForm form : {SignatureForm::Raw, SignatureForm::Der})
                static_cast<void>(known->verify(message, signature, form));
    }
    return 0;
}
