#include "crypto/signature/KeyReader.hpp"

#include <botan/alg_id.h>
#include <botan/base64.h>
#include <botan/ber_dec.h>
#include <botan/bigint.h>
#include <botan/divide.h>
#include <botan/ec_group.h>
#include <botan/ecdsa.h>
#include <botan/ed25519.h>
#include <botan/exceptn.h>
#include <botan/pbes2.h>
#include <botan/pk_keys.h>
#include <botan/rng.h>
#include <botan/rsa.h>

#include <algorithm>
#include <array>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "crypto/signature/Pem.hpp"
#include "crypto/signature/RandomDevice.hpp"

namespace Crypto {

namespace {

using Botan::AlgorithmIdentifier;
using Botan::BER_Decoder;
using Botan::BigInt;
using Botan::OID;
using Bytes = Botan::secure_vector<std::uint8_t>;
using PrivateKey = std::unique_ptr<Botan::Private_Key>;
using PublicKey = std::unique_ptr<Botan::Public_Key>;

/// What ends the reading of a key.
struct Refusal {
    KeyFault fault;
};

/// The largest key that is looked at: one of RSA with 4096 bits has 2,400 bytes in DER. It bounds
/// the time that a file with absurd numbers takes.
constexpr std::size_t maxKeyBytes = 0x10000;
constexpr std::size_t minRsaBits = 2048, maxRsaBits = 4096;
/// Bounds the work of making a key of a passphrase to seconds and 128 MiB. OpenSSL takes 2,048
/// iterations, or 2^17 blocks of scrypt.
constexpr std::size_t maxIterations = 10'000'000, maxScryptBlocks = std::size_t{1} << 20U;
constexpr std::size_t maxDerivedBytes = 64, minSaltBytes = 8;

enum class Algorithm : unsigned char { Ed25519, P256, P384, Rsa };

Algorithm algorithmOf(SignatureType type) {
    switch (type) {
        case SignatureType::Ed25519:
            return Algorithm::Ed25519;
        case SignatureType::EcdsaP256_Sha256:
            return Algorithm::P256;
        case SignatureType::EcdsaP384_Sha384:
            return Algorithm::P384;
        case SignatureType::RsaPss_Sha256:
        case SignatureType::RsaPkcs1_Sha256:
            break;
    }
    return Algorithm::Rsa;
}

const OID& ed25519() {
    static const OID oid{1, 3, 101, 112};
    return oid;
}

const OID& ecPublicKey() {
    static const OID oid{1, 2, 840, 10045, 2, 1};
    return oid;
}

const OID& rsaEncryption() {
    static const OID oid{1, 2, 840, 113549, 1, 1, 1};
    return oid;
}

/// Only curves that are named count: one that is given by its numbers may be made to fit a public
/// key to a private one of the maker's choice.
Algorithm algorithmOfCurve(const OID& curve) {
    if (curve == OID{1, 2, 840, 10045, 3, 1, 7}) return Algorithm::P256;
    if (curve == OID{1, 3, 132, 0, 34}) return Algorithm::P384;
    throw Refusal{KeyFault::NotAKey};
}

Algorithm algorithmOf(const AlgorithmIdentifier& id) {
    if (id.get_oid() == ed25519()) return Algorithm::Ed25519;
    if (id.get_oid() == rsaEncryption()) return Algorithm::Rsa;
    if (id.get_oid() != ecPublicKey()) throw Refusal{KeyFault::NotAKey};
    OID curve;
    BER_Decoder(id.get_parameters()).decode(curve).verify_end();
    return algorithmOfCurve(curve);
}

/// What a key is to be for; any type if nothing is asked.
using Wanted = std::optional<SignatureType>;

void demand(Algorithm found, Wanted type) {
    if (type && found != algorithmOf(*type)) throw Refusal{KeyFault::WrongType};
}

void demand(bool isSound) {
    if (!isSound) throw Refusal{KeyFault::NotAKey};
}

Botan::EC_Group groupOf(Algorithm curve) {
    return Botan::EC_Group(curve == Algorithm::P256 ? "secp256r1" : "secp384r1");
}

Bytes decodeBody(const PemBlock& block) {
    // Three bytes are four characters, and line ends.
    demand(block.body.size() < 2 * maxKeyBytes);
    return Botan::base64_decode(block.body.data(), block.body.size());
}

/// Whether making a key of a passphrase is quick. Throws if the numbers are not there.
bool isBounded(BER_Decoder& pbkdf2OrScrypt, bool isScrypt) {
    Bytes salt;
    std::size_t first = 0;
    pbkdf2OrScrypt.decode(salt, Botan::OCTET_STRING).decode(first);
    if (salt.size() < minSaltBytes || first == 0) return false;
    if (!isScrypt) return first <= maxIterations;
    std::size_t blockSize = 0, parallel = 0;
    pbkdf2OrScrypt.decode(blockSize).decode(parallel);
    return blockSize > 0 && first <= maxScryptBlocks / blockSize && parallel > 0 &&
           parallel <= maxScryptBlocks / (first * blockSize);
}

/// Refuses what the library cannot do, and what would take it minutes or gigabytes.
void checkDerivation(const AlgorithmIdentifier& function) {
    static const OID pbkdf2{1, 2, 840, 113549, 1, 5, 12}, scrypt{1, 3, 6, 1, 4, 1, 11591, 4, 11};
    const bool isScrypt = function.get_oid() == scrypt;
    if (!isScrypt && function.get_oid() != pbkdf2) throw Refusal{KeyFault::UnknownEncryption};
    BER_Decoder decoder(function.get_parameters());
    BER_Decoder sequence = decoder.start_cons(Botan::SEQUENCE);
    const bool isQuick = isBounded(sequence, isScrypt);
    std::size_t keyLength = 0;
    sequence.decode_optional(keyLength, Botan::INTEGER, Botan::UNIVERSAL);
    if (!isQuick || keyLength > maxDerivedBytes) throw Refusal{KeyFault::UnknownEncryption};
}

void checkCipher(const AlgorithmIdentifier& cipher) {
    static const std::array known{
        OID{2, 16, 840, 1, 101, 3, 4, 1, 2}, OID{2, 16, 840, 1, 101, 3, 4, 1, 22},
        OID{2, 16, 840, 1, 101, 3, 4, 1, 42}, OID{1, 2, 840, 113549, 3, 7}};  // AES-CBC, 3DES-CBC
    if (std::ranges::find(known, cipher.get_oid()) == known.end())
        throw Refusal{KeyFault::UnknownEncryption};
}

/// An EncryptedPrivateKeyInfo (RFC 5958).
struct EncryptedKey {
    std::vector<std::uint8_t> parameters;  ///< of PBES2
    Bytes content;
};

EncryptedKey decodeEncrypted(const Bytes& der) {
    AlgorithmIdentifier scheme, function, cipher;
    EncryptedKey key;
    BER_Decoder outer(der);
    outer.start_cons(Botan::SEQUENCE)
        .decode(scheme)
        .decode(key.content, Botan::OCTET_STRING)
        .end_cons();
    outer.verify_end();
    if (scheme.get_oid() != OID{1, 2, 840, 113549, 1, 5, 13})
        throw Refusal{KeyFault::UnknownEncryption};
    key.parameters = scheme.get_parameters();
    BER_Decoder(key.parameters)
        .start_cons(Botan::SEQUENCE)
        .decode(function)
        .decode(cipher)
        .end_cons();
    checkDerivation(function);
    checkCipher(cipher);
    return key;
}

Bytes decrypt(const EncryptedKey& key, std::string_view passphrase) {
    std::string text{passphrase};
    struct Wiping {
        std::string& text;
        ~Wiping() { Botan::secure_scrub_memory(text.data(), text.size()); }
    } const wiping{text};
    return Botan::pbes2_decrypt(key.content, text, key.parameters);
}

PrivateKey makeEd25519(const Bytes& key) {
    Bytes seed;
    BER_Decoder(key).decode(seed, Botan::OCTET_STRING).verify_end();
    demand(seed.size() == 32);
    return std::make_unique<Botan::Ed25519_PrivateKey>(seed);
}

/// An ECPrivateKey (RFC 5915).
struct EcKey {
    BigInt scalar;
    OID curve;    ///< empty inside of PKCS#8, which names the curve itself
    Bytes point;  ///< the public key, which may be left out
};

EcKey decodeEc(const Bytes& der) {
    EcKey key;
    BER_Decoder outer(der);
    outer.start_cons(Botan::SEQUENCE)
        .decode_and_check<std::size_t>(1, "version")
        .decode_octet_string_bigint(key.scalar)
        .decode_optional(key.curve, Botan::ASN1_Tag(0), Botan::PRIVATE)
        .decode_optional_string(key.point, Botan::BIT_STRING, 1, Botan::PRIVATE)
        .end_cons();
    outer.verify_end();
    return key;
}

PrivateKey makeEc(const EcKey& key, Algorithm curve) {
    const Botan::EC_Group group = groupOf(curve);
    demand(key.scalar > 0 && key.scalar < group.get_order());
    demand(key.curve.empty() || algorithmOfCurve(key.curve) == curve);
    const auto random = makeRandomDevice();
    auto made = std::make_unique<Botan::ECDSA_PrivateKey>(*random, group, key.scalar);
    demand(key.point.empty() || group.OS2ECP(key.point) == made->public_point());
    return made;
}

void demandRsaSize(const BigInt& modulus) {
    demand(modulus.is_positive());
    if (modulus.bits() < minRsaBits || modulus.bits() > maxRsaBits)
        throw Refusal{KeyFault::KeySize};
}

/// Refuses an RSAPrivateKey (RFC 8017, appendix A.1.2) whose numbers are too large to compute with.
void checkRsaSizes(const Bytes& der) {
    BigInt number;
    BER_Decoder outer(der);
    BER_Decoder sequence = outer.start_cons(Botan::SEQUENCE);
    sequence.decode_and_check<std::size_t>(0, "version").decode(number);
    demandRsaSize(number);
    for (int i = 0; i < 7; ++i) {
        sequence.decode(number);
        demand(number.is_positive() && number.bits() <= maxRsaBits);
    }
    sequence.end_cons();
    outer.verify_end();
}

/// The numbers of the key fit together. Whether p and q are primes is not tested, which would take
/// many times as long as to sign: with others the library finds its signature wrong.
bool isSound(const Botan::RSA_PrivateKey& key) {
    const BigInt& p = key.get_p();
    const BigInt& q = key.get_q();
    const BigInt& e = key.get_e();
    if (p <= 2 || q <= 2 || p.is_even() || q.is_even() || e < 3 || e.is_even()) return false;
    const auto isInverse = [](const BigInt& one, const BigInt& other, const BigInt& modulus) {
        return Botan::ct_modulo(one * other, modulus) == 1;
    };
    return p * q == key.get_n() && isInverse(e, key.get_d(), p - 1) &&
           isInverse(e, key.get_d(), q - 1) && isInverse(e, key.get_d1(), p - 1) &&
           isInverse(e, key.get_d2(), q - 1) && isInverse(q, key.get_c(), p);
}

PrivateKey makeRsa(const Bytes& der) {
    checkRsaSizes(der);
    auto key = std::make_unique<Botan::RSA_PrivateKey>(AlgorithmIdentifier{}, der);
    demand(isSound(*key));
    return key;
}

PrivateKey makePrivate(const Bytes& key, Algorithm algorithm) {
    switch (algorithm) {
        case Algorithm::Ed25519:
            return makeEd25519(key);
        case Algorithm::P256:
        case Algorithm::P384:
            return makeEc(decodeEc(key), algorithm);
        case Algorithm::Rsa:
            break;
    }
    return makeRsa(key);
}

/// A PrivateKeyInfo, or a OneAsymmetricKey (RFC 5958), whose attributes and public key are ignored.
struct Pkcs8Key {
    AlgorithmIdentifier id;
    Bytes key;
};

Pkcs8Key decodePkcs8(const Bytes& der) {
    Pkcs8Key key;
    std::size_t version = 0;
    BER_Decoder outer(der);
    outer.start_cons(Botan::SEQUENCE)
        .decode(version)
        .decode(key.id)
        .decode(key.key, Botan::OCTET_STRING)
        .discard_remaining()
        .end_cons();
    outer.verify_end();
    demand(version <= 1);
    return key;
}

Pkcs8Key decryptPkcs8(const EncryptedKey& key, std::string_view passphrase) {
    // One in 256 wrong passphrases gives bytes that are padded as they should be.
    try {
        return decodePkcs8(decrypt(key, passphrase));
    } catch (const Refusal&) {
    } catch (const Botan::Lookup_Error&) {
        throw Refusal{KeyFault::UnknownEncryption};
    } catch (const Botan::Exception&) {
    }
    throw Refusal{KeyFault::WrongPassphrase};
}

PrivateKey readPkcs8(const Pkcs8Key& key, Wanted type) {
    const Algorithm algorithm = algorithmOf(key.id);
    demand(algorithm, type);
    return makePrivate(key.key, algorithm);
}

PrivateKey readEncrypted(const Bytes& der, std::optional<std::string_view> passphrase,
                         Wanted type) {
    const EncryptedKey key = decodeEncrypted(der);
    if (!passphrase) throw Refusal{KeyFault::Encrypted};
    return readPkcs8(decryptPkcs8(key, *passphrase), type);
}

PrivateKey readSec1(const Bytes& der, Wanted type) {
    const EcKey key = decodeEc(der);
    const Algorithm curve = algorithmOfCurve(key.curve);
    demand(curve, type);
    return makeEc(key, curve);
}

PrivateKey readPrivate(const PemBlock& block, std::optional<std::string_view> passphrase,
                       Wanted type) {
    if (block.label == "PUBLIC KEY") throw Refusal{KeyFault::PublicForPrivate};
    if (block.hasEncryptionHeader()) throw Refusal{KeyFault::UnknownEncryption};
    const Bytes der = decodeBody(block);
    if (block.label == "ENCRYPTED PRIVATE KEY") return readEncrypted(der, passphrase, type);
    if (block.label == "EC PRIVATE KEY") return readSec1(der, type);
    if (block.label == "PRIVATE KEY") return readPkcs8(decodePkcs8(der), type);
    demand(Algorithm::Rsa, type);
    return makeRsa(der);
}

PublicKey makeEcPublic(const std::vector<std::uint8_t>& bits, Algorithm curve) {
    const Botan::EC_Group group = groupOf(curve);
    const Botan::PointGFp point = group.OS2ECP(bits);
    demand(group.verify_public_element(point));
    return std::make_unique<Botan::ECDSA_PublicKey>(group, point);
}

PublicKey makeRsaPublic(const std::vector<std::uint8_t>& bits) {
    BigInt modulus, exponent;
    BER_Decoder outer(bits);
    outer.start_cons(Botan::SEQUENCE).decode(modulus).decode(exponent).end_cons();
    outer.verify_end();
    demandRsaSize(modulus);
    demand(exponent >= 3 && exponent < modulus);
    return std::make_unique<Botan::RSA_PublicKey>(modulus, exponent);
}

PublicKey makePublic(const std::vector<std::uint8_t>& bits, Algorithm algorithm) {
    switch (algorithm) {
        case Algorithm::Ed25519:
            return std::make_unique<Botan::Ed25519_PublicKey>(bits.data(), bits.size());
        case Algorithm::P256:
        case Algorithm::P384:
            return makeEcPublic(bits, algorithm);
        case Algorithm::Rsa:
            break;
    }
    return makeRsaPublic(bits);
}

PublicKey readPublic(const PemBlock& block, std::optional<std::string_view> passphrase,
                     Wanted type) {
    if (block.label != "PUBLIC KEY") {
        const PrivateKey key = readPrivate(block, passphrase, type);
        return makePublic(key->public_key_bits(), algorithmOf(typeOf(*key)));
    }
    AlgorithmIdentifier id;
    std::vector<std::uint8_t> bits;
    const Bytes der = decodeBody(block);
    BER_Decoder outer(der);
    outer.start_cons(Botan::SEQUENCE).decode(id).decode(bits, Botan::BIT_STRING).end_cons();
    outer.verify_end();
    const Algorithm algorithm = algorithmOf(id);
    demand(algorithm, type);
    return makePublic(bits, algorithm);
}

/// The key that `reader` makes of the first block with one.
template <class Key, class Reader>
std::variant<Key, KeyFault> read(std::span<const std::uint8_t> pem, Reader reader) {
    const std::optional<PemBlock> block = findKey(pem);
    if (!block) return KeyFault::NotAKey;
    try {
        return reader(*block);
    } catch (const Refusal& refusal) {
        return refusal.fault;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        // The library refuses by exceptions of many types what is not as it should be.
        return KeyFault::NotAKey;
    }
}

}  // namespace

std::variant<PrivateKey, KeyFault> readPrivateKey(std::span<const std::uint8_t> pem,
                                                  std::optional<std::string_view> passphrase,
                                                  std::optional<SignatureType> type) {
    return read<PrivateKey>(
        pem, [&](const PemBlock& block) { return readPrivate(block, passphrase, type); });
}

std::variant<PublicKey, KeyFault> readPublicKey(std::span<const std::uint8_t> pem,
                                                std::optional<std::string_view> passphrase,
                                                std::optional<SignatureType> type) {
    return read<PublicKey>(
        pem, [&](const PemBlock& block) { return readPublic(block, passphrase, type); });
}

SignatureType typeOf(const Botan::Public_Key& key) {
    const std::string name = key.algo_name();
    if (name == "Ed25519") return SignatureType::Ed25519;
    if (name == "RSA") return SignatureType::RsaPkcs1_Sha256;
    constexpr std::size_t bitsOfP256 = 256;
    return key.key_length() == bitsOfP256 ? SignatureType::EcdsaP256_Sha256
                                          : SignatureType::EcdsaP384_Sha384;
}

}  // namespace Crypto
