#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <variant>
#include <vector>

/// Digital signatures with keys in PEM. The library that computes them shows nowhere outside the
/// sources of this folder. A build with -DTESSARON_SIGNATURES=OFF has the same interface, in which
/// no key can be read.
namespace Crypto {

/// What is signed with which kind of key.
enum class SignatureType : unsigned char {
    Ed25519,           ///< RFC 8032, of the message itself (neither Ed25519ctx nor Ed25519ph)
    EcdsaP256_Sha256,  ///< FIPS 186-4 over NIST P-256, with the nonce of RFC 6979
    EcdsaP384_Sha384,  ///< the same over NIST P-384
    RsaPss_Sha256,     ///< RFC 8017, MGF1 with SHA-256, a random salt of 32 bytes
    RsaPkcs1_Sha256    ///< RFC 8017, EMSA-PKCS1-v1_5
};

/// Whether the same key and message always give the same signature. All types but RSASSA-PSS do:
/// its salt is random, so that two signatures of a message differ and both are right.
constexpr bool isDeterministic(SignatureType type) {
    return type != SignatureType::RsaPss_Sha256;
}

/// How the two numbers r and s of ECDSA are written. The other types have one form, for which this
/// means nothing.
enum class SignatureForm : unsigned char {
    Raw,  ///< r, then s, each with all bytes of the order, the most significant one first
    Der   ///< a SEQUENCE of the two as INTEGERs (RFC 3279, section 2.2.3)
};

/// Why a key was refused.
enum class KeyFault : unsigned char {
    None,
    NotAKey,           ///< no PEM of a key, a damaged key, an algorithm or curve of no type
    WrongType,         ///< a sound key, of another algorithm or curve than the type asks
    PublicForPrivate,  ///< a public key, which cannot sign
    Encrypted,         ///< the key is encrypted and no passphrase was given
    WrongPassphrase,  ///< the passphrase does not decrypt the key, or the encrypted part is damaged
    UnknownEncryption,  ///< encrypted otherwise than by PBES2 (RFC 8018) with AES or 3DES, such as
                        ///< by the headers of old PEM files, or so that decrypting takes minutes
    KeySize,            ///< RSA below 2048 or above 4096 bits
    NotBuilt            ///< the program was built without signatures
};

/// Signs with a private key, which is wiped from memory at the end of its life.
class SigningKey {
public:
    /// Reads the first key in `pem`: PKCS#8, encrypted PKCS#8, SEC 1 (EC PRIVATE KEY) or PKCS#1
    /// (RSA PRIVATE KEY). Other text, and blocks that are not keys, such as EC PARAMETERS, are
    /// skipped. The parts of the key must fit together. Nothing of `pem` is kept; its owner wipes
    /// it. The passphrase is ignored if the key is not encrypted. The only exception is
    /// std::bad_alloc.
    ///
    /// @param type  what the key is to be for; without it, the deterministic type of the key, which
    ///              is RsaPkcs1_Sha256 of an RSA key
    static std::variant<SigningKey, KeyFault> read(std::span<const std::uint8_t> pem,
                                                   std::optional<std::string_view> passphrase,
                                                   std::optional<SignatureType> type);

    SigningKey(SigningKey&& other) noexcept;
    SigningKey& operator=(SigningKey&& other) noexcept;
    SigningKey(const SigningKey&) = delete;
    SigningKey& operator=(const SigningKey&) = delete;
    ~SigningKey();

    /// The signature of the message: 64 bytes with Ed25519, 64 or 96 with ECDSA in raw form and up
    /// to 72 or 104 in DER, as many as the modulus has with RSA. Throws std::bad_alloc, and
    /// std::runtime_error if the machine has no random numbers or computes wrongly.
    std::vector<std::uint8_t> sign(std::span<const std::uint8_t> message, SignatureForm form) const;

    /// The SHA-256 of the public key as SubjectPublicKeyInfo in DER, the points of curves
    /// uncompressed. A key and its public part have the same.
    std::array<std::uint8_t, 32> fingerprint() const;

private:
    struct Key;
    explicit SigningKey(std::unique_ptr<Key> key);
    std::unique_ptr<Key> key_;
};

/// Verifies with a public key.
class VerifyingKey {
public:
    /// As SigningKey::read, of a public key as well (SubjectPublicKeyInfo). A private key gives its
    /// public part.
    static std::variant<VerifyingKey, KeyFault> read(std::span<const std::uint8_t> pem,
                                                     std::optional<std::string_view> passphrase,
                                                     std::optional<SignatureType> type);

    VerifyingKey(VerifyingKey&& other) noexcept;
    VerifyingKey& operator=(VerifyingKey&& other) noexcept;
    VerifyingKey(const VerifyingKey&) = delete;
    VerifyingKey& operator=(const VerifyingKey&) = delete;
    ~VerifyingKey();

    /// Whether this is a signature of the message. One of another length, in another form or in a
    /// DER that is not the shortest is none. The only exception is std::bad_alloc.
    bool verify(std::span<const std::uint8_t> message, std::span<const std::uint8_t> signature,
                SignatureForm form) const;

    /// The key as SubjectPublicKeyInfo in DER (RFC 5280), the points of curves uncompressed.
    std::vector<std::uint8_t> publicKey() const;

    /// As SigningKey::fingerprint.
    std::array<std::uint8_t, 32> fingerprint() const;

private:
    struct Key;
    explicit VerifyingKey(std::unique_ptr<Key> key);
    std::unique_ptr<Key> key_;
};

}  // namespace Crypto
