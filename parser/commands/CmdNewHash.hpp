#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "parser/commands/CmdApi.hpp"
#include "parser/commands/CmdNewCrc.hpp"

namespace Parser::WrapperLib {

/// NEW_HASH: computes a message digest over the effective bytes of images and keeps it under a
/// name. Hash_Md6, Hash_Shake and a statement without `-setType` give the empty digest.
class CmdNewHash final : public CmdApi {
public:
    /// The digests that a script can name, in the order in which the grammar tries them.
    static std::span<const TypeKeyword> types();

    void setHashName(std::string name);
    void addFromBuffer(std::string name);
    void addArea(const Area& area) { areas.push_back(area); }
    void setType(std::uint32_t code) { hashType = code; }

    bool execute(CmdContext& context) override;
    std::uint32_t getCmdType() const override { return number(CmdType::NewHash); }

private:
    std::vector<std::string> fromBuffers;
    std::string hashName;
    std::uint32_t hashType = 0;
    AreaList areas;
};

}  // namespace Parser::WrapperLib
