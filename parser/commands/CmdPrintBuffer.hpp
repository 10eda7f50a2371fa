#pragma once

#include <cstdint>
#include <string>

#include "parser/commands/CmdApi.hpp"

namespace Parser::WrapperLib {

/// PRINT_BUFFER: prints the range of an image and its effective bytes, all of them or those of the
/// given areas, 13 to a row.
class CmdPrintBuffer final : public CmdApi {
public:
    void setBufferName(std::string name);
    void addArea(const Area& area) { areas_.push_back(area); }

    const std::string& bufferName() const { return bufferName_; }
    const AreaList& areas() const { return areas_; }

    bool execute(CmdContext& context) override;
    std::uint32_t getCmdType() const override { return number(CmdType::PrintBuffer); }

private:
    std::string bufferName_;
    AreaList areas_;
};

}  // namespace Parser::WrapperLib
