#pragma once

#include <cstdint>
#include <span>

#include "parser/commands/CmdNewValue.hpp"

namespace Parser::WrapperLib {

/// NEW_HASH: computes a message digest over the effective bytes of images and keeps it under a
/// name. Hash_Md6, Hash_Shake and a statement without `-setType` give the empty digest.
class CmdNewHash final : public CmdNewValue {
public:
    CmdNewHash();

    /// The digests that a script can name, in the order in which the grammar tries them.
    static std::span<const ValueType> types();

    std::uint32_t getCmdType() const override { return number(CmdType::NewHash); }
};

}  // namespace Parser::WrapperLib
