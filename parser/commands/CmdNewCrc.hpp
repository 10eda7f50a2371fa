#pragma once

#include <cstdint>
#include <span>

#include "parser/commands/CmdNewValue.hpp"

namespace Parser::WrapperLib {

/// NEW_CRC: computes a checksum over the effective bytes of images and keeps it under a name.
/// Without `-setType` that is Crc32_Tolmen.
class CmdNewCrc final : public CmdNewValue {
public:
    CmdNewCrc();

    /// The checksums that a script can name, in the order in which the grammar tries them.
    static std::span<const ValueType> types();

    std::uint32_t getCmdType() const override { return number(CmdType::NewCrc); }
};

}  // namespace Parser::WrapperLib
