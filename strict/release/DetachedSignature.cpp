#include "strict/release/DetachedSignature.hpp"

#include <cstdint>
#include <span>
#include <stdexcept>

namespace Strict {

namespace {

std::span<const std::uint8_t> bytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

}  // namespace

std::optional<std::string> signatureOf(std::string_view document, const Crypto::SigningKey& key,
                                       const std::string& file, DiagnosticSink& sink) {
    try {
        const auto signature = key.sign(bytesOf(document), Crypto::SignatureForm::Der);
        return std::string(signature.begin(), signature.end());
    } catch (const std::runtime_error& error) {
        sink.take({Kind::Key, "the key " + file + " cannot be used: " + error.what()});
        return std::nullopt;
    }
}

bool isSignatureOf(std::string_view signature, std::string_view document,
                   const Crypto::VerifyingKey& key) {
    return key.verify(bytesOf(document), bytesOf(signature), Crypto::SignatureForm::Der);
}

}  // namespace Strict
