#include "crypto/signature/Signature.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace {

using Crypto::KeyFault;
using Crypto::SignatureForm;
using Crypto::SignatureType;
using Crypto::SigningKey;
using Crypto::VerifyingKey;
using Bytes = std::vector<std::uint8_t>;
using Passphrase = std::optional<std::string_view>;

constexpr std::string_view rightPassphrase = "correct horse";

Bytes fromHex(std::string_view digits) {
    Bytes bytes;
    for (; !digits.empty(); digits.remove_prefix(2))
        bytes.push_back(
            static_cast<std::uint8_t>(std::stoul(std::string{digits.substr(0, 2)}, nullptr, 16)));
    return bytes;
}

Bytes operator+(Bytes front, const Bytes& back) {
    front.insert(front.end(), back.begin(), back.end());
    return front;
}

Bytes bytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}

Bytes keyFile(const std::string& name) {
    std::ifstream file{"keys/" + name + ".pem", std::ios::binary};
    return {std::istreambuf_iterator<char>{file}, {}};
}

/// RFC 4648, section 4.
std::string toBase64(const Bytes& bytes) {
    constexpr std::string_view digits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t group = 0;
        for (std::size_t j = i; j < i + 3; ++j)
            group = group << 8U | (j < bytes.size() ? bytes[j] : 0U);
        for (unsigned shift = 18; shift <= 18; shift -= 6) text += digits[group >> shift & 63U];
    }
    const std::size_t missing = (3 - bytes.size() % 3) % 3;
    return text.replace(text.size() - missing, missing, missing, '=');
}

Bytes pem(const std::string& label, const Bytes& der) {
    return bytesOf("-----BEGIN " + label + "-----\n" + toBase64(der) + "\n-----END " + label +
                   "-----\n");
}

/// The private key of a vector: PKCS#8 as in RFC 8410, section 7, or SEC 1 without the public key.
Bytes pemOf(SignatureType type, const Bytes& key) {
    if (type == SignatureType::Ed25519)
        return pem("PRIVATE KEY", fromHex("302e020100300506032b657004220420") + key);
    if (type == SignatureType::EcdsaP256_Sha256)
        return pem("EC PRIVATE KEY",
                   fromHex("30310201010420") + key + fromHex("a00a06082a8648ce3d030107"));
    return pem("EC PRIVATE KEY", fromHex("303e0201010430") + key + fromHex("a00706052b81040022"));
}

KeyFault faultOf(const std::variant<SigningKey, KeyFault>& read) {
    return std::holds_alternative<KeyFault>(read) ? std::get<KeyFault>(read) : KeyFault::None;
}

KeyFault faultOf(const std::variant<VerifyingKey, KeyFault>& read) {
    return std::holds_alternative<KeyFault>(read) ? std::get<KeyFault>(read) : KeyFault::None;
}

KeyFault signingFault(const Bytes& text, SignatureType type, Passphrase passphrase = {}) {
    return faultOf(SigningKey::read(text, passphrase, type));
}

KeyFault verifyingFault(const Bytes& text, SignatureType type, Passphrase passphrase = {}) {
    return faultOf(VerifyingKey::read(text, passphrase, type));
}

SigningKey signingKey(const Bytes& text, SignatureType type, Passphrase passphrase = {}) {
    return std::get<SigningKey>(SigningKey::read(text, passphrase, type));
}

VerifyingKey verifyingKey(const Bytes& text, SignatureType type, Passphrase passphrase = {}) {
    return std::get<VerifyingKey>(VerifyingKey::read(text, passphrase, type));
}

SignatureType typeOf(const std::string& name) {
    static const std::map<std::string, SignatureType> types{
        {"Ed25519", SignatureType::Ed25519},
        {"EcdsaP256_Sha256", SignatureType::EcdsaP256_Sha256},
        {"EcdsaP384_Sha384", SignatureType::EcdsaP384_Sha384},
        {"RsaPss_Sha256", SignatureType::RsaPss_Sha256},
        {"RsaPkcs1_Sha256", SignatureType::RsaPkcs1_Sha256}};
    return types.at(name);
}

struct SignatureVector {
    SignatureType type;
    Bytes key, message, signature;
};

std::vector<SignatureVector> readVectors() {
    std::ifstream file{"vectors.tsv"};
    std::vector<SignatureVector> vectors;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('#')) continue;
        std::istringstream fields{line};
        std::string type, key, message, signature;
        std::getline(fields, type, '\t');
        std::getline(fields, key, '\t');
        std::getline(fields, message, '\t');
        std::getline(fields, signature, '\t');
        vectors.push_back({typeOf(type), fromHex(key), fromHex(message), fromHex(signature)});
    }
    return vectors;
}

TEST(Signature, vectorsOfTheStandards) {
    const std::vector<SignatureVector> vectors = readVectors();
    ASSERT_EQ(vectors.size(), 9U);
    for (const SignatureVector& vector : vectors) {
        const Bytes text = pemOf(vector.type, vector.key);
        EXPECT_EQ(signingKey(text, vector.type).sign(vector.message, SignatureForm::Raw),
                  vector.signature);
        EXPECT_TRUE(verifyingKey(text, vector.type)
                        .verify(vector.message, vector.signature, SignatureForm::Raw));
    }
}

TEST(Signature, publishedSignaturesVerifyOrDoNot) {
    std::ifstream file{"published.tsv"};
    std::optional<VerifyingKey> key;
    SignatureForm form = SignatureForm::Raw;
    Bytes message;
    std::map<std::string, int> counts;
    for (std::string line; std::getline(file, line);) {
        std::istringstream fields{line};
        std::string what, value, formName, spki;
        std::getline(fields, what, '\t');
        std::getline(fields, value, '\t');
        ++counts[what];
        if (what == "key") {
            std::getline(fields, formName, '\t');
            std::getline(fields, spki, '\t');
            form = formName == "Der" ? SignatureForm::Der : SignatureForm::Raw;
            key.emplace(verifyingKey(pem("PUBLIC KEY", fromHex(spki)), typeOf(value)));
        } else if (what == "message") {
            message = fromHex(value);
        } else if (what == "right" || what == "wrong") {
            EXPECT_EQ(key->verify(message, fromHex(value), form), what == "right") << line;
        }
    }
    EXPECT_EQ(counts["right"], 382);
    EXPECT_EQ(counts["wrong"], 834);
}

/// What differs in one bit verifies with no key.
TEST(Signature, everyBitCounts) {
    for (const SignatureVector& vector : readVectors()) {
        if (vector.message.size() > 64) continue;
        const VerifyingKey key = verifyingKey(pemOf(vector.type, vector.key), vector.type);
        for (std::size_t bit = 0; bit < 8 * vector.signature.size(); bit += 3) {
            Bytes changed = vector.signature;
            changed[bit / 8] ^= static_cast<std::uint8_t>(1U << bit % 8);
            EXPECT_FALSE(key.verify(vector.message, changed, SignatureForm::Raw)) << bit;
        }
        EXPECT_FALSE(key.verify(vector.message + Bytes{0}, vector.signature, SignatureForm::Raw));
    }
}

TEST(Signature, wrongLengths) {
    struct Case {
        const char* key;
        SignatureType type;
    };
    for (const Case& one :
         {Case{"ed25519", SignatureType::Ed25519}, Case{"p256", SignatureType::EcdsaP256_Sha256},
          Case{"p384", SignatureType::EcdsaP384_Sha384}, Case{"rsa", SignatureType::RsaPss_Sha256},
          Case{"rsa", SignatureType::RsaPkcs1_Sha256}}) {
        const VerifyingKey key = verifyingKey(keyFile(one.key), one.type);
        const Bytes message = bytesOf("firmware");
        const Bytes signature =
            signingKey(keyFile(one.key), one.type).sign(message, SignatureForm::Raw);
        ASSERT_TRUE(key.verify(message, signature, SignatureForm::Raw));
        const Bytes cut{signature.begin(), signature.end() - 1};
        const Bytes half{signature.begin(), signature.begin() + std::ssize(signature) / 2};
        // To RSA, a zero in front changes nothing about the number.
        for (const Bytes& wrong : {Bytes{}, Bytes{0}, cut, half, signature + Bytes{0},
                                   Bytes{0} + signature, Bytes(100000, 1)})
            for (const SignatureForm form : {SignatureForm::Raw, SignatureForm::Der})
                EXPECT_FALSE(key.verify(message, wrong, form)) << wrong.size();
    }
}

/// S and S plus the order of the group are the same number to who does not look.
TEST(Signature, ed25519RefusesAnSThatIsNotReduced) {
    const SignatureVector vector = readVectors().front();
    const Bytes order = fromHex("edd3f55c1a631258d69cf7a2def9de1400000000000000000000000000000010");
    Bytes more = vector.signature;
    unsigned carry = 0;
    for (std::size_t i = 0; i < order.size(); ++i) {
        const unsigned sum = more[32 + i] + order[i] + carry;
        more[32 + i] = static_cast<std::uint8_t>(sum);
        carry = sum >> 8U;
    }
    EXPECT_FALSE(verifyingKey(pemOf(vector.type, vector.key), vector.type)
                     .verify(vector.message, more, SignatureForm::Raw));
}

/// The DER of RFC 3279 around the "sample" of RFC 6979, appendix A.2.5, whose r and s have their
/// highest bits set, and variants of it that no encoder writes.
TEST(Signature, derIsStrict) {
    const Bytes message = bytesOf("sample");
    const std::string r = "efd48b2aacb6a8fd1140dd9cd45e81d69d2c877b56aaf991c34d0ea84eaf3716";
    const std::string s = "f7cb1c942d657c41d436c7a1b6e29f65f3e900dbb9aff4064dc4ab2f843acda8";
    const std::string order = "ffffffff00000000ffffffffffffffffbce6faada7179e84f3b9cac2fc632551";
    const std::string goodR = "022100" + r, goodS = "022100" + s;
    const auto type = SignatureType::EcdsaP256_Sha256;
    const Bytes text =
        pemOf(type, fromHex("c9afa9d845ba75166b5c215767b1d6934e50c3db36e89b127b8a622b120f6721"));
    const VerifyingKey key = verifyingKey(text, type);
    const Bytes good = fromHex("3046" + goodR + goodS);
    EXPECT_EQ(signingKey(text, type).sign(message, SignatureForm::Der), good);
    EXPECT_TRUE(key.verify(message, good, SignatureForm::Der));
    EXPECT_TRUE(key.verify(message, fromHex(r + s), SignatureForm::Raw));
    const std::pair<const char*, std::string> bad[] = {
        {"the other form", r + s},
        {"a byte after it", "3046" + goodR + goodS + "00"},
        {"a byte in it", "3047" + goodR + goodS + "00"},
        {"a third number", "3049" + goodR + goodS + "020101"},
        {"one number", "3023" + goodR},
        {"no number", "3000"},
        {"a zero too many", "304702220000" + r + goodS},
        {"a negative number",
         "3045"
         "0220" +
             r + goodS},
        {"a length of two bytes", "308146" + goodR + goodS},
        {"an indefinite length", "3080" + goodR + goodS + "0000"},
        {"a length that is too long", "3047" + goodR + goodS},
        {"a length that is too short", "3045" + goodR + goodS},
        {"a length of 4 GB", "3084ffffffff" + goodR + goodS},
        {"a SET", "3146" + goodR + goodS},
        {"an OCTET STRING",
         "3046"
         "042100" +
             r + goodS},
        {"r = 0",
         "3026"
         "020100" +
             goodS},
        {"s = 0", "3026" + goodR + "020100"},
        {"both 0", "3006020100020100"},
        {"both 1", "3006020101020101"},
        {"r = n",
         "3046"
         "022100" +
             order + goodS},
        {"s = n", "3046" + goodR + "022100" + order},
    };
    for (const auto& [what, digits] : bad)
        EXPECT_FALSE(key.verify(message, fromHex(digits), SignatureForm::Der)) << what;
    const std::string zero(64, '0');
    for (const std::string& digits : {zero + s, r + zero, zero + zero, order + s, r + order})
        EXPECT_FALSE(key.verify(message, fromHex(digits), SignatureForm::Raw)) << digits;
    EXPECT_FALSE(key.verify(message, good, SignatureForm::Raw));
}

TEST(Signature, rsaPssIsRandomAndTheOthersAreNot) {
    const Bytes message = bytesOf("firmware");
    for (const auto type : {SignatureType::RsaPss_Sha256, SignatureType::RsaPkcs1_Sha256}) {
        const SigningKey key = signingKey(keyFile("rsa"), type);
        EXPECT_EQ(key.sign(message, SignatureForm::Raw) == key.sign(message, SignatureForm::Raw),
                  Crypto::isDeterministic(type));
    }
}

/// One key has one fingerprint in every file; `openssl pkey -pubout -outform DER | sha256sum`.
TEST(Signature, fingerprints) {
    struct Case {
        const char* key;
        SignatureType type;
        const char* digits;
    };
    const Case cases[] = {
        {"ed25519", SignatureType::Ed25519,
         "80c03bbd6e2038447bf44e471de22095056e930f6634cd3e802a06144728843f"},
        {"ed25519-public", SignatureType::Ed25519,
         "80c03bbd6e2038447bf44e471de22095056e930f6634cd3e802a06144728843f"},
        {"ed25519-aes", SignatureType::Ed25519,
         "80c03bbd6e2038447bf44e471de22095056e930f6634cd3e802a06144728843f"},
        {"p256", SignatureType::EcdsaP256_Sha256,
         "e9f69a3a2d7c5b364e93931e4b331e3eb5a9970bf1648f11ec16a01ffcfd04f4"},
        {"p256-public", SignatureType::EcdsaP256_Sha256,
         "e9f69a3a2d7c5b364e93931e4b331e3eb5a9970bf1648f11ec16a01ffcfd04f4"},
        {"p256-public-compressed", SignatureType::EcdsaP256_Sha256,
         "e9f69a3a2d7c5b364e93931e4b331e3eb5a9970bf1648f11ec16a01ffcfd04f4"},
        {"p256-des3", SignatureType::EcdsaP256_Sha256,
         "e9f69a3a2d7c5b364e93931e4b331e3eb5a9970bf1648f11ec16a01ffcfd04f4"},
        {"p256-sec1", SignatureType::EcdsaP256_Sha256,
         "bb9ecc5d83c6f60b0301c2b33117c35cb5be86ef16dbcf55e3833368dd7255b7"},
        {"p384", SignatureType::EcdsaP384_Sha384,
         "8466f90eb0c63b2797e83e407355760aa0be29a907e32c1cae56a896397a4cab"},
        {"p384-public", SignatureType::EcdsaP384_Sha384,
         "8466f90eb0c63b2797e83e407355760aa0be29a907e32c1cae56a896397a4cab"},
        {"rsa", SignatureType::RsaPss_Sha256,
         "657c5b2a0ecd26fd775adb95931ca666f56ddb5f5a877f9571a15c45cfb9b3f3"},
        {"rsa", SignatureType::RsaPkcs1_Sha256,
         "657c5b2a0ecd26fd775adb95931ca666f56ddb5f5a877f9571a15c45cfb9b3f3"},
        {"rsa-public", SignatureType::RsaPkcs1_Sha256,
         "657c5b2a0ecd26fd775adb95931ca666f56ddb5f5a877f9571a15c45cfb9b3f3"},
        {"rsa-pkcs1", SignatureType::RsaPkcs1_Sha256,
         "657c5b2a0ecd26fd775adb95931ca666f56ddb5f5a877f9571a15c45cfb9b3f3"},
        {"rsa-scrypt", SignatureType::RsaPkcs1_Sha256,
         "657c5b2a0ecd26fd775adb95931ca666f56ddb5f5a877f9571a15c45cfb9b3f3"},
    };
    for (const Case& one : cases) {
        const Bytes expected = fromHex(one.digits);
        const auto got = verifyingKey(keyFile(one.key), one.type, rightPassphrase).fingerprint();
        EXPECT_EQ(Bytes(got.begin(), got.end()), expected) << one.key;
        if (std::string_view{one.key}.find("public") != std::string_view::npos) continue;
        const auto other = signingKey(keyFile(one.key), one.type, rightPassphrase).fingerprint();
        EXPECT_EQ(other, got) << one.key;
    }
}

TEST(Signature, keyFaults) {
    struct Case {
        const char* key;
        SignatureType type;
        Passphrase passphrase;
        KeyFault signing, verifying;
    };
    const auto ed25519 = SignatureType::Ed25519;
    const auto p256 = SignatureType::EcdsaP256_Sha256;
    const auto p384 = SignatureType::EcdsaP384_Sha384;
    const auto rsa = SignatureType::RsaPkcs1_Sha256;
    const Case cases[] = {
        {"ed25519", ed25519, {}, KeyFault::None, KeyFault::None},
        {"ed25519", ed25519, "of no use", KeyFault::None, KeyFault::None},
        {"ed25519", p256, {}, KeyFault::WrongType, KeyFault::WrongType},
        {"p256", p384, {}, KeyFault::WrongType, KeyFault::WrongType},
        {"p256-sec1", p384, {}, KeyFault::WrongType, KeyFault::WrongType},
        {"p256-sec1", rsa, {}, KeyFault::WrongType, KeyFault::WrongType},
        {"p384", ed25519, {}, KeyFault::WrongType, KeyFault::WrongType},
        {"p384-public", p256, {}, KeyFault::PublicForPrivate, KeyFault::WrongType},
        {"rsa", ed25519, {}, KeyFault::WrongType, KeyFault::WrongType},
        {"rsa-pkcs1", p256, {}, KeyFault::WrongType, KeyFault::WrongType},
        {"ed25519-public", ed25519, {}, KeyFault::PublicForPrivate, KeyFault::None},
        {"ed25519-aes", ed25519, {}, KeyFault::Encrypted, KeyFault::Encrypted},
        {"ed25519-aes", ed25519, "", KeyFault::WrongPassphrase, KeyFault::WrongPassphrase},
        {"ed25519-aes", ed25519, "correct hors", KeyFault::WrongPassphrase,
         KeyFault::WrongPassphrase},
        {"ed25519-aes", p256, rightPassphrase, KeyFault::WrongType, KeyFault::WrongType},
        {"p256-des3", p256, "Correct horse", KeyFault::WrongPassphrase, KeyFault::WrongPassphrase},
        {"rsa-scrypt", rsa, "correct horse ", KeyFault::WrongPassphrase, KeyFault::WrongPassphrase},
        {"p256-iterations", p256, rightPassphrase, KeyFault::UnknownEncryption,
         KeyFault::UnknownEncryption},
        {"p256-pbes1", p256, rightPassphrase, KeyFault::UnknownEncryption,
         KeyFault::UnknownEncryption},
        {"p256-aria", p256, rightPassphrase, KeyFault::UnknownEncryption,
         KeyFault::UnknownEncryption},
        {"rsa-old-headers", rsa, rightPassphrase, KeyFault::UnknownEncryption,
         KeyFault::UnknownEncryption},
        {"secp256k1", p256, {}, KeyFault::NotAKey, KeyFault::NotAKey},
        {"p256-explicit", p256, {}, KeyFault::NotAKey, KeyFault::NotAKey},
        {"ed448", ed25519, {}, KeyFault::NotAKey, KeyFault::NotAKey},
        {"rsa-pss", SignatureType::RsaPss_Sha256, {}, KeyFault::NotAKey, KeyFault::NotAKey},
        {"rsa-1024", rsa, {}, KeyFault::KeySize, KeyFault::KeySize},
        {"rsa-16384", rsa, {}, KeyFault::KeySize, KeyFault::KeySize},
        {"rsa-16384-public", rsa, {}, KeyFault::PublicForPrivate, KeyFault::KeySize},
        {"certificate", p256, {}, KeyFault::NotAKey, KeyFault::NotAKey},
        {"no such file", p256, {}, KeyFault::NotAKey, KeyFault::NotAKey},
    };
    for (const Case& one : cases) {
        EXPECT_EQ(signingFault(keyFile(one.key), one.type, one.passphrase), one.signing) << one.key;
        EXPECT_EQ(verifyingFault(keyFile(one.key), one.type, one.passphrase), one.verifying)
            << one.key;
    }
}

/// What surrounds a key in files that people have.
TEST(Signature, textAroundAKey) {
    const Bytes key = keyFile("ed25519");
    const auto type = SignatureType::Ed25519;
    EXPECT_EQ(signingFault(keyFile("certificate") + key, type), KeyFault::None);
    EXPECT_EQ(signingFault(bytesOf("Bag Attributes\n  friendlyName: a\n") + key, type),
              KeyFault::None);
    std::string dos;
    for (const std::uint8_t byte : key)
        dos += byte == '\n' ? "\r\n" : std::string(1, static_cast<char>(byte));
    EXPECT_EQ(signingFault(bytesOf(dos), type), KeyFault::None);
    EXPECT_EQ(signingFault({key.begin(), key.end() - 10}, type), KeyFault::NotAKey);
    EXPECT_EQ(signingFault(bytesOf("-----BEGIN CERTIFICATE-----\n") + key, type),
              KeyFault::NotAKey);
    // Megabytes of beginnings take no longer than they are.
    std::string begins;
    for (int i = 0; i < 100000; ++i) begins += "-----BEGIN A-----\n-----END A-----\n-----BEGIN ";
    EXPECT_EQ(signingFault(bytesOf(begins), type), KeyFault::NotAKey);
}

/// Numbers that are well formed and no key, or of which one contradicts another.
TEST(Signature, damagedKeys) {
    const auto p256 = SignatureType::EcdsaP256_Sha256;
    const std::string named = "a00a06082a8648ce3d030107";
    const std::string zeros(63, '0');
    const auto sec1 = [&](const std::string& scalar) {
        return pem("EC PRIVATE KEY", fromHex("30310201010420" + scalar + named));
    };
    EXPECT_EQ(signingFault(sec1(zeros + "1"), p256), KeyFault::None);
    EXPECT_EQ(signingFault(sec1(zeros + "0"), p256), KeyFault::NotAKey);
    EXPECT_EQ(signingFault(sec1("ffffffff00000000ffffffffffffffffbce6faada7179e84f3b9cac2fc632551"),
                           p256),
              KeyFault::NotAKey);
    // The generator belongs to the private key 1 and to no other (SEC 2, section 2.4.2).
    const std::string generator =
        "a144034200046b17d1f2e12c4247f8bce6e563a440f277037d812deb33a0f4a13945d898c296"
        "4fe342e2fe1a7f9b8ee7eb4a7c0f9e162bce33576b315ececbb6406837bf51f5";
    const auto withPoint = [&](const std::string& scalar) {
        return pem("EC PRIVATE KEY", fromHex("30770201010420" + scalar + named + generator));
    };
    EXPECT_EQ(signingFault(withPoint(zeros + "1"), p256), KeyFault::None);
    EXPECT_EQ(signingFault(withPoint(zeros + "2"), p256), KeyFault::NotAKey);
    // Points that are not on the curve, and the one at infinity.
    const std::string spki = "301306072a8648ce3d020106082a8648ce3d030107";
    EXPECT_EQ(verifyingFault(pem("PUBLIC KEY", fromHex("3059" + spki + generator.substr(4))), p256),
              KeyFault::None);
    EXPECT_EQ(
        verifyingFault(pem("PUBLIC KEY", fromHex("3059" + spki + generator.substr(4, 134) + "f6")),
                       p256),
        KeyFault::NotAKey);
    EXPECT_EQ(verifyingFault(pem("PUBLIC KEY", fromHex("3019" + spki + "03020000")), p256),
              KeyFault::NotAKey);
    // A seed of 33 bytes.
    EXPECT_EQ(signingFault(
                  pem("PRIVATE KEY", fromHex("302f020100300506032b657004230421" + zeros + "000")),
                  SignatureType::Ed25519),
              KeyFault::NotAKey);
}

/// A byte of the base64 text that differs makes no private key but the sound one. In RSA every
/// number is checked, in the others a byte may make another key.
TEST(Signature, noDamageToAnRsaKeyPasses) {
    const Bytes key = keyFile("rsa");
    for (std::size_t i = 40; i + 40 < key.size(); i += 23) {
        Bytes damaged = key;
        if (damaged[i] == '\n' || damaged[i] == '=') continue;
        damaged[i] = damaged[i] == 'A' ? 'B' : 'A';
        EXPECT_NE(signingFault(damaged, SignatureType::RsaPss_Sha256), KeyFault::None) << i;
    }
}

}  // namespace
