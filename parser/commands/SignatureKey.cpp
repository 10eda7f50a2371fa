#include "parser/commands/SignatureKey.hpp"

#include <array>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

#include "facts/Listener.hpp"
#include "io/Host.hpp"
#include "platform/Paths.hpp"
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

/// The contents of a key file; nothing after a report.
std::optional<Platform::SecretFile> contentsOf(const std::string& path) {
    auto file = Io::host().openKey(Platform::terminatedPath(path));
    if (file) return std::make_optional<Platform::SecretFile>(std::move(*file));
    Facts::report(Facts::FileNotOpened{path});
    return std::nullopt;
}

/// The key in a file; nothing after a report.
///
/// @param kind  what the key is for; null for the type of its algorithm
template <class Key>
std::optional<Key> keyIn(const std::string& path, const SignatureKind* kind,
                         std::optional<std::string_view> passphrase) {
    const auto file = contentsOf(path);
    if (!file) return std::nullopt;
    const auto refused = [&](KeyFault fault) {
        Facts::report(Facts::KeyRefused{path, kind == nullptr ? "" : kind->keyword, fault});
        return std::nullopt;
    };
    if (!file->isWhole()) return refused(KeyFault::NotAKey);
    auto key = Key::read(file->bytes(), passphrase,
                         kind == nullptr ? std::nullopt : std::optional(kind->type));
    if (const auto* const fault = std::get_if<Crypto::KeyFault>(&key))
        return refused(factOf(*fault));
    if (std::is_same_v<Key, Crypto::SigningKey> && file->isReadableByOthers())
        Facts::report(Facts::KeyReadable{path});
    return std::move(std::get<Key>(key));
}

/// The key that a statement names; nothing after a report.
template <class Key>
std::optional<Key> keyOf(const SignatureSettings& settings, const CmdContext& context) {
    if (settings.kind != nullptr && settings.keyFile)
        return keyIn<Key>(*settings.keyFile, settings.kind, context.passphrase);
    const bool hasKind = settings.kind != nullptr;
    Facts::report(Facts::KeyRefused{settings.keyFile.value_or(""),
                                    hasKind ? settings.kind->keyword : "",
                                    hasKind ? KeyFault::NotGiven : KeyFault::NoType});
    return std::nullopt;
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

std::optional<Crypto::SigningKey> signingKeyIn(const std::string& file,
                                               std::optional<std::string_view> passphrase) {
    return keyIn<Crypto::SigningKey>(file, nullptr, passphrase);
}

std::optional<Crypto::VerifyingKey> verifyingKeyIn(const std::string& file,
                                                   std::optional<std::string_view> passphrase) {
    return keyIn<Crypto::VerifyingKey>(file, nullptr, passphrase);
}

}  // namespace Parser::WrapperLib
