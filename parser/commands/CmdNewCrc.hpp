#pragma once

#include <cstdint>
#include <span>

#include "parser/commands/CmdNewValue.hpp"
#include "util/crc/CrcParameters.hpp"

namespace Parser::WrapperLib {

/// NEW_CRC: computes a checksum over the effective bytes of images and keeps it under a name.
/// Without `-setType` that is Crc32_Tolmen.
class CmdNewCrc final : public CmdNewValue {
public:
    CmdNewCrc();

    /// The checksums that a script can name, in the order in which the grammar tries them.
    static std::span<const ValueType> types();

    /// The type of a statement without `-setType`.
    static const ValueType& usualType();

    /// Computes a CRC of the catalogue.
    void setCatalogueCrc(const Util::Crc::CatalogueEntry& entry);

    /// Computes a CRC of up to 64 bits. Parameters that describe none are refused when the
    /// statement runs.
    ///
    /// @param parameters  width, polynomial, initial value, 1 or 0 for a reflected input and a
    ///                    reflected output, final xor
    void setCustomCrc(std::span<const std::uint64_t> parameters);

    std::uint32_t getCmdType() const override { return number(CmdType::NewCrc); }
};

}  // namespace Parser::WrapperLib
