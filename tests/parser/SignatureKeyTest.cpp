#include "parser/commands/SignatureKey.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "crypto/signature/Signature.hpp"
#include "facts/Listener.hpp"
#include "parser/commands/CmdContext.hpp"

namespace {

using namespace Parser::WrapperLib;
using Facts::KeyFault;

/// Keeps why keys were refused.
class Refusals final : public Facts::Listener {
public:
    void hear(const Facts::Fact& fact) override {
        if (const auto* const refused = std::get_if<Facts::KeyRefused>(&fact))
            faults.push_back(refused->fault);
        if (const auto* const missing = std::get_if<Facts::FileNotOpened>(&fact))
            missingFile = missing->file;
    }
    std::vector<KeyFault> faults;
    std::string missingFile;
};

std::string pathOf(const std::string& name) {
    return TESSARON_TEST_KEYS "/" + name + ".pem";
}

const SignatureKind* kindNamed(std::string_view keyword) {
    const auto kind = std::ranges::find(signatureKinds(), keyword, &SignatureKind::keyword);
    return kind == signatureKinds().end() ? nullptr : &*kind;
}

TEST(SignatureKeyTest, AKeyIsRefusedForItsReason) {
    struct Row {
        const char* kind;
        const char* file;
        const char* passphrase;  ///< null for none
        std::optional<KeyFault> signing;
        std::optional<KeyFault> verifying;
    };
    const std::vector<Row> rows{
        {"Ed25519", "ed25519", nullptr, {}, {}},
        {"Ed25519", "ed25519", "not needed", {}, {}},
        {"Ed25519", "ed25519-public", nullptr, KeyFault::Public, {}},
        {"Ed25519", "ed25519-aes", nullptr, KeyFault::Encrypted, KeyFault::Encrypted},
        {"Ed25519", "ed25519-aes", "wrong", KeyFault::PassphraseWrong, KeyFault::PassphraseWrong},
        {"Ed25519", "ed25519-aes", "correct horse", {}, {}},
        {"Ed25519", "p256", nullptr, KeyFault::WrongType, KeyFault::WrongType},
        {"EcdsaP384_Sha384", "p256", nullptr, KeyFault::WrongType, KeyFault::WrongType},
        {"EcdsaP256_Sha256", "p256-sec1", nullptr, {}, {}},
        {"RsaPss_Sha256", "rsa-pkcs1", nullptr, {}, {}},
        {"RsaPss_Sha256", "rsa-1024", nullptr, KeyFault::Size, KeyFault::Size},
        {"RsaPkcs1_Sha256", "rsa-16384", nullptr, KeyFault::Size, KeyFault::Size},
        {"RsaPkcs1_Sha256", "rsa-old-headers", "correct horse", KeyFault::EncryptionUnknown,
         KeyFault::EncryptionUnknown},
        {"Ed25519", "certificate", nullptr, KeyFault::NotAKey, KeyFault::NotAKey},
        {"none", "ed25519", nullptr, KeyFault::NoType, KeyFault::NoType},
        {"Ed25519", nullptr, nullptr, KeyFault::NotGiven, KeyFault::NotGiven},
    };
    for (const Row& row : rows) {
        CmdContext context;
        if (row.passphrase != nullptr) context.passphrase = row.passphrase;
        SignatureSettings settings{kindNamed(row.kind), {}};
        if (row.file != nullptr) settings.keyFile = pathOf(row.file);
        Refusals refusals;
        const Facts::ListenerScope listening(refusals);
        EXPECT_EQ(settings.signingKey(context).has_value(), !row.signing)
            << settings.keyFile.value_or("no key");
        EXPECT_EQ(settings.verifyingKey(context).has_value(), !row.verifying)
            << settings.keyFile.value_or("no key");
        std::vector<KeyFault> expected;
        for (const auto& fault : {row.signing, row.verifying})
            if (fault) expected.push_back(*fault);
        EXPECT_EQ(refusals.faults, expected) << settings.keyFile.value_or("no key");
    }
}

TEST(SignatureKeyTest, APublicKeyNeedsNoType) {
    Refusals refusals;
    const Facts::ListenerScope listening(refusals);
    const auto publicKeyIn = [](const std::string& name) {
        const auto key = verifyingKeyIn(pathOf(name), {});
        return key ? std::optional(key->publicKey()) : std::nullopt;
    };
    for (const auto& [one, other] :
         {std::pair("ed25519", "ed25519-public"), std::pair("p256", "p256-public"),
          std::pair("p384", "p384-public"), std::pair("rsa", "rsa-public")}) {
        const auto key = publicKeyIn(one);
        EXPECT_TRUE(key) << one;
        EXPECT_EQ(key, publicKeyIn(other)) << one;
    }
    EXPECT_FALSE(publicKeyIn("ed448"));
    EXPECT_FALSE(publicKeyIn("rsa-1024"));
    EXPECT_EQ(refusals.faults, (std::vector{KeyFault::NotAKey, KeyFault::Size}));
    EXPECT_FALSE(publicKeyIn("missing"));
    EXPECT_EQ(refusals.missingFile, pathOf("missing"));
}

}  // namespace
