#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "parser/commands/CmdApi.hpp"

namespace Parser::WrapperLib {

/// A keyword of `-setType`, the code that it stores and the trace text of its parser action.
struct TypeKeyword {
    const char* keyword;
    std::uint32_t code;
    const char* trace;
};

/// NEW_CRC: computes a checksum over the effective bytes of images and keeps it under a name.
class CmdNewCrc final : public CmdApi {
public:
    /// The checksums that a script can name, in the order in which the grammar tries them.
    static std::span<const TypeKeyword> types();

    void setCrcName(std::string name);
    void addFromBuffer(std::string name);
    void addArea(const Area& area) { areas.push_back(area); }

    /// A code of `types`; every other code, so also the initial 0, computes Crc32_Tolmen.
    void setType(std::uint32_t code) { crcType = code; }

    bool execute(CmdContext& context) override;
    std::uint32_t getCmdType() const override { return number(CmdType::NewCrc); }

private:
    std::vector<std::string> fromBuffers;
    std::string crcName;
    std::uint32_t crcType = 0;
    AreaList areas;
};

}  // namespace Parser::WrapperLib
