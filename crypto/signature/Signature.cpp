#include "crypto/signature/Signature.hpp"

#include <botan/ec_group.h>
#include <botan/ecdsa.h>
#include <botan/ed25519.h>
#include <botan/exceptn.h>
#include <botan/pubkey.h>
#include <botan/rng.h>
#include <botan/secmem.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

#include "crypto/signature/KeyReader.hpp"
#include "crypto/signature/LibrarySetting.hpp"
#include "crypto/signature/RandomDevice.hpp"
#include "crypto/signature/WorkerThreads.hpp"
#include "crypto/stream/hash/hash_sha.hpp"

namespace Crypto {

struct SigningKey::Key {
    std::unique_ptr<Botan::Private_Key> key;
    SignatureType type;
};

struct VerifyingKey::Key {
    std::unique_ptr<Botan::Public_Key> key;
    SignatureType type;
};

namespace {

bool makeLockedPool() {
    const LibrarySetting size("BOTAN_MLOCK_POOL_SIZE", "64");
    const Botan::secure_vector<std::uint8_t> first(1);
    return true;
}

/// Lets the library lock 64 KiB of memory for secret numbers, which all numbers of one key fit
/// into, instead of 512: to lock and guard each page of these takes longer than to sign. Before the
/// first use of the library.
void limitLockedPool() {
    [[maybe_unused]] static const bool isMade = makeLockedPool();
}

/// How the library calls what is done to the message before the key is used.
std::string encodingOf(SignatureType type) {
    switch (type) {
        case SignatureType::Ed25519:
            return "Pure";
        case SignatureType::EcdsaP256_Sha256:
            return "EMSA1(SHA-256)";
        case SignatureType::EcdsaP384_Sha384:
            return "EMSA1(SHA-384)";
        case SignatureType::RsaPss_Sha256:
            return "EMSA4(SHA-256,MGF1,32)";
        case SignatureType::RsaPkcs1_Sha256:
            break;
    }
    return "EMSA3(SHA-256)";
}

bool isEcdsa(SignatureType type) {
    return type == SignatureType::EcdsaP256_Sha256 || type == SignatureType::EcdsaP384_Sha384;
}

bool isRsa(SignatureType type) {
    return type == SignatureType::RsaPss_Sha256 || type == SignatureType::RsaPkcs1_Sha256;
}

bool isDer(SignatureType type, SignatureForm form) {
    return isEcdsa(type) && form == SignatureForm::Der;
}

Botan::Signature_Format formatOf(SignatureType type, SignatureForm form) {
    return isDer(type, form) ? Botan::DER_SEQUENCE : Botan::IEEE_1363;
}

/// The bytes of a raw signature.
std::size_t lengthOf(const Botan::Public_Key& key, SignatureType type) {
    if (type == SignatureType::Ed25519) return 64;
    return isEcdsa(type) ? key.message_parts() * key.message_part_size()
                         : (key.key_length() + 7) / 8;
}

/// Whether the length can be that of a signature. A DER has at most a tag and a length for each of
/// its three parts and a zero before each number.
bool isPossibleLength(std::size_t length, std::size_t rawLength, bool isDer) {
    return isDer ? length <= rawLength + 8 : length == rawLength;
}

/// RFC 8032, section 5.1.7: the number S is below the order of the group. Otherwise a signature
/// could be changed into another one of the same message.
bool isBelowOrder(std::span<const std::uint8_t> littleEndian) {
    static constexpr std::uint8_t order[] = {0xed, 0xd3, 0xf5, 0x5c, 0x1a, 0x63, 0x12, 0x58,
                                             0xd6, 0x9c, 0xf7, 0xa2, 0xde, 0xf9, 0xde, 0x14,
                                             0,    0,    0,    0,    0,    0,    0,    0,
                                             0,    0,    0,    0,    0,    0,    0,    0x10};
    return std::lexicographical_compare(littleEndian.rbegin(), littleEndian.rend(),
                                        std::rbegin(order), std::rend(order));
}

std::array<std::uint8_t, 32> fingerprintOf(const Botan::Public_Key& key) {
    const std::vector<std::uint8_t> info = key.subject_public_key();
    kv::crypto::stream::hash::hash_sha256 hash;
    hash.update(info.data(), info.size());
    return hash.finish();
}

}  // namespace

SigningKey::SigningKey(std::unique_ptr<Key> key) : key_(std::move(key)) {}
SigningKey::SigningKey(SigningKey&& other) noexcept = default;
SigningKey& SigningKey::operator=(SigningKey&& other) noexcept = default;
SigningKey::~SigningKey() = default;

std::variant<SigningKey, KeyFault> SigningKey::read(std::span<const std::uint8_t> pem,
                                                    std::optional<std::string_view> passphrase,
                                                    std::optional<SignatureType> type) {
    limitLockedPool();
    auto result = readPrivateKey(pem, passphrase, type);
    if (const KeyFault* fault = std::get_if<KeyFault>(&result)) return *fault;
    auto& key = std::get<0>(result);
    const SignatureType used = type.value_or(typeOf(*key));
    return SigningKey{std::make_unique<Key>(Key{std::move(key), used})};
}

std::vector<std::uint8_t> SigningKey::sign(std::span<const std::uint8_t> message,
                                           SignatureForm form) const {
    // Of an RSA signature, two threads compute a half each. The library keeps them.
    const LibrarySetting threads("BOTAN_THREAD_POOL_SIZE", "2");
    if (isRsa(key_->type)) demandWorkerThreads(2);
    try {
        const auto random = makeRandomDevice();
        Botan::PK_Signer signer(*key_->key, *random, encodingOf(key_->type),
                                formatOf(key_->type, form));
        return signer.sign_message(message.data(), message.size(), *random);
    } catch (const Botan::Exception& exception) {
        throw std::runtime_error(exception.what());
    }
}

std::array<std::uint8_t, 32> SigningKey::fingerprint() const {
    return fingerprintOf(*key_->key);
}

VerifyingKey::VerifyingKey(std::unique_ptr<Key> key) : key_(std::move(key)) {}
VerifyingKey::VerifyingKey(VerifyingKey&& other) noexcept = default;
VerifyingKey& VerifyingKey::operator=(VerifyingKey&& other) noexcept = default;
VerifyingKey::~VerifyingKey() = default;

std::variant<VerifyingKey, KeyFault> VerifyingKey::read(std::span<const std::uint8_t> pem,
                                                        std::optional<std::string_view> passphrase,
                                                        std::optional<SignatureType> type) {
    limitLockedPool();
    auto result = readPublicKey(pem, passphrase, type);
    if (const KeyFault* fault = std::get_if<KeyFault>(&result)) return *fault;
    auto& key = std::get<0>(result);
    const SignatureType used = type.value_or(typeOf(*key));
    return VerifyingKey{std::make_unique<Key>(Key{std::move(key), used})};
}

bool VerifyingKey::verify(std::span<const std::uint8_t> message,
                          std::span<const std::uint8_t> signature, SignatureForm form) const {
    const SignatureType type = key_->type;
    if (!isPossibleLength(signature.size(), lengthOf(*key_->key, type), isDer(type, form)))
        return false;
    if (type == SignatureType::Ed25519 && !isBelowOrder(signature.last(32))) return false;
    try {
        Botan::PK_Verifier verifier(*key_->key, encodingOf(type), formatOf(type, form));
        return verifier.verify_message(message.data(), message.size(), signature.data(),
                                       signature.size());
    } catch (const Botan::Exception&) {
        // What is not a signature at all, such as a number above the modulus.
        return false;
    }
}

std::vector<std::uint8_t> VerifyingKey::publicKey() const {
    return key_->key->subject_public_key();
}

std::array<std::uint8_t, 32> VerifyingKey::fingerprint() const {
    return fingerprintOf(*key_->key);
}

}  // namespace Crypto
