#include "parser/commands/SignatureKey.hpp"

#include <array>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

#include "facts/Listener.hpp"
#include "io/Host.hpp"
#include "platform/SecretFile.hpp"

namespace Parser::WrapperLib {

namespace {

using Crypto::SignatureType;
using Facts::KeyFault;

constexpr std::array<SignatureKind, 5> kinds{{
    {"Ed25519", "SetSignature_Ed25519 -> ", SignatureType::Ed25519, "Ed25519, RFC 8032", 64},
    {"EcdsaP256_Sha256", "SetSignature_EcdsaP256_Sha256 -> ", SignatureType::EcdsaP256_Sha256,
     "ECDSA on P-256 with SHA-256, FIPS 186-5, deterministic by RFC 6979", 64, true},
    {"EcdsaP384_Sha384", "SetSignature_EcdsaP384_Sha384 -> ", SignatureType::EcdsaP384_Sha384,
     "ECDSA on P-384 with SHA-384, FIPS 186-5, deterministic by RFC 6979", 96, true},
    {"RsaPss_Sha256", "SetSignature_RsaPss_Sha256 -> ", SignatureType::RsaPss_Sha256,
     "RSASSA-PSS with SHA-256, RFC 8017, which is random", std::nullopt},
    {"RsaPkcs1_Sha256", "SetSignature_RsaPkcs1_Sha256 -> ", SignatureType::RsaPkcs1_Sha256,
     "RSASSA-PKCS1-v1_5 with SHA-256, RFC 8017", std::nullopt},
}};

KeyFault factOf(Crypto::KeyFault fault) {
    switch (fault) {
        case Crypto::KeyFault::WrongType:
            return KeyFault::WrongType;
        case Crypto::KeyFault::PublicForPrivate:
            return KeyFault::Public;
        case Crypto::KeyFault::Encrypted:
            return KeyFault::Encrypted;
        case Crypto::KeyFault::WrongPassphrase:
            return KeyFault::PassphraseWrong;
        case Crypto::KeyFault::UnknownEncryption:
            return KeyFault::EncryptionUnknown;
        case Crypto::KeyFault::KeySize:
            return KeyFault::Size;
        case Crypto::KeyFault::NotBuilt:
            return KeyFault::NotSupported;
        default:
            return KeyFault::NotAKey;
    }
}

/// What a key file holds: a key, or why there is none.
template <class Key>
using Reading = std::variant<Key, KeyFault>;

/// The contents of a key file; nothing after a report.
std::optional<Platform::SecretFile> contentsOf(const std::string& path) {
    // For the system a path ends at a zero byte.
    auto file = Io::host().openKey(path.substr(0, path.find('\0')));
    if (file) return std::make_optional<Platform::SecretFile>(std::move(*file));
    Facts::report(Facts::FileNotOpened{path});
    return std::nullopt;
}

template <class Key>
Reading<Key> readKey(const Platform::SecretFile& file, const CmdContext& context,
                     SignatureType type) {
    if (!file.isWhole()) return KeyFault::NotAKey;
    auto key = Key::read(file.bytes(), context.passphrase, type);
    if (const auto* const fault = std::get_if<Crypto::KeyFault>(&key)) return factOf(*fault);
    return std::move(std::get<Key>(key));
}

/// The key that a statement names; nothing after a report.
template <class Key>
std::optional<Key> keyOf(const SignatureSettings& settings, const CmdContext& context) {
    const std::string_view type = settings.kind == nullptr ? "" : settings.kind->keyword;
    const auto refused = [&](KeyFault fault) {
        Facts::report(Facts::KeyRefused{settings.keyFile, type, fault});
        return std::nullopt;
    };
    if (settings.kind == nullptr) return refused(KeyFault::NoType);
    if (settings.keyFile.empty()) return refused(KeyFault::NotGiven);
    const auto file = contentsOf(settings.keyFile);
    if (!file) return std::nullopt;
    auto key = readKey<Key>(*file, context, settings.kind->type);
    if (const auto* const fault = std::get_if<KeyFault>(&key)) return refused(*fault);
    if (std::is_same_v<Key, Crypto::SigningKey> && file->isReadableByOthers())
        Facts::report(Facts::KeyReadable{settings.keyFile});
    return std::move(std::get<Key>(key));
}

}  // namespace

std::span<const SignatureKind> signatureKinds() {
    return kinds;
}

std::optional<Crypto::SigningKey> SignatureSettings::signingKey(const CmdContext& context) const {
    return keyOf<Crypto::SigningKey>(*this, context);
}

std::optional<Crypto::VerifyingKey> SignatureSettings::verifyingKey(
    const CmdContext& context) const {
    return keyOf<Crypto::VerifyingKey>(*this, context);
}

std::optional<ByteList> publicKeyIn(const std::string& path, const CmdContext& context) {
    const auto file = contentsOf(path);
    if (!file) return std::nullopt;
    KeyFault fault = KeyFault::NotAKey;
    for (const SignatureKind& kind : kinds) {
        const auto key = readKey<Crypto::VerifyingKey>(*file, context, kind.type);
        if (const auto* const known = std::get_if<Crypto::VerifyingKey>(&key))
            return known->publicKey();
        fault = std::get<KeyFault>(key);
        if (fault != KeyFault::WrongType) break;
    }
    Facts::report(Facts::KeyRefused{path, "", fault});
    return std::nullopt;
}

}  // namespace Parser::WrapperLib
