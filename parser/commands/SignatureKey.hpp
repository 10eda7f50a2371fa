#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "crypto/signature/Signature.hpp"
#include "parser/commands/CmdContext.hpp"

namespace Parser::WrapperLib {

/// A `-setType` keyword of signatures.
struct SignatureKind {
    const char* keyword;
    const char* trace;  ///< the trace text of its parser action
    Crypto::SignatureType type;
    const char* meaning;              ///< one line, for people
    std::optional<std::size_t> size;  ///< in bytes, if all signatures in raw form have it
    bool isEcdsa = false;             ///< it has two forms
};

/// The types that a script can name, in the order in which the grammar tries them.
std::span<const SignatureKind> signatureKinds();

/// What a statement says of the key and the form of a signature.
struct SignatureSettings {
    const SignatureKind* kind = nullptr;  ///< null without `-setType`
    std::optional<std::string> keyFile;
    Crypto::SignatureForm form = Crypto::SignatureForm::Raw;

    /// The private key; nothing after a report.
    std::optional<Crypto::SigningKey> signingKey(const CmdContext& context) const;

    /// The public key; nothing after a report.
    std::optional<Crypto::VerifyingKey> verifyingKey(const CmdContext& context) const;
};

/// The key in a file, for the deterministic type of its algorithm; nothing after a report.
std::optional<Crypto::SigningKey> signingKeyIn(const std::string& file,
                                               std::optional<std::string_view> passphrase);
std::optional<Crypto::VerifyingKey> verifyingKeyIn(const std::string& file,
                                                   std::optional<std::string_view> passphrase);

}  // namespace Parser::WrapperLib
