#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "parser/commands/CmdNewValue.hpp"
#include "parser/commands/SignatureKey.hpp"

namespace Parser::WrapperLib {

/// NEW_SIGNATURE: signs the effective bytes of images with a private key, or takes a signature that
/// was made elsewhere from a file or an image, and keeps it under a name.
class CmdNewSignature final : public CmdNewValue {
public:
    CmdNewSignature();

    /// A file with the bytes of a signature.
    ///
    /// @param argument  the path as written in the script, delimiters included
    void setFile(std::string argument);

    /// The bytes of the images are the signature itself.
    void setStored(bool isStored) { isStored_ = isStored; }

    void setKind(const SignatureKind& kind);
    void setKeyFile(std::string argument);
    void setForm(Crypto::SignatureForm form) { settings_.form = form; }

    /// Known beforehand for Ed25519 and for ECDSA in raw form. Else the key decides, and in DER the
    /// numbers, or what the signature is taken from.
    std::optional<std::size_t> valueSize() const override;

    /// The SHA-256 of the public key that belongs to the private one (VerifyingKey::fingerprint);
    /// nothing if this statement has not signed.
    const std::optional<std::array<std::uint8_t, 32>>& fingerprint() const { return fingerprint_; }

    bool execute(CmdContext& context) override;
    std::uint32_t getCmdType() const override { return number(CmdType::NewSignature); }

private:
    bool sign(CmdContext& context);
    bool takeStored(CmdContext& context) const;
    bool takeFile(CmdContext& context, const std::string& file) const;

    SignatureSettings settings_;
    std::optional<std::string> file_;  ///< that the signature is taken from
    bool isStored_ = false;
    std::optional<std::array<std::uint8_t, 32>> fingerprint_;
};

}  // namespace Parser::WrapperLib
