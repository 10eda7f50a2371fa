#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "crypto/signature/Signature.hpp"
#include "strict/diagnostics/Diagnostic.hpp"

/// Signatures of the documents of a run, each in a file of its own. They are those of OpenSSL, for
/// the deterministic type of the key: Ed25519, ECDSA in DER, RSASSA-PKCS1-v1_5 with SHA-256.
namespace Strict {

/// The bytes of a detached signature. Nothing after a diagnostic.
///
/// @param file  of the key
std::optional<std::string> signatureOf(std::string_view document, const Crypto::SigningKey& key,
                                       const std::string& file, DiagnosticSink& sink);

/// Whether the bytes are a detached signature of the document.
bool isSignatureOf(std::string_view signature, std::string_view document,
                   const Crypto::VerifyingKey& key);

}  // namespace Strict
