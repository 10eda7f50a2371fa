#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "parser/commands/CmdNewValue.hpp"

namespace Parser::WrapperLib {

/// NEW_HASH: computes a message digest over the effective bytes of images, or over a public key,
/// and keeps it under a name. Hash_Md6, Hash_Shake and a statement without `-setType` give the
/// empty digest.
class CmdNewHash final : public CmdNewValue {
public:
    CmdNewHash();

    /// The digests that a script can name, in the order in which the grammar tries them.
    static std::span<const ValueType> types();

    /// A file with a key, over the public part of which the digest is computed, as the DER of its
    /// SubjectPublicKeyInfo (RFC 5280).
    ///
    /// @param argument  the path as written in the script, delimiters included
    void setKeyFile(std::string argument);

    bool execute(CmdContext& context) override;
    std::uint32_t getCmdType() const override { return number(CmdType::NewHash); }

private:
    std::optional<std::string> keyFile_;  ///< without it the digest is one of images
};

}  // namespace Parser::WrapperLib
