#pragma once

#include <cstdint>
#include <string>

#include "parser/commands/CmdApi.hpp"

namespace Parser::WrapperLib {

/// PRINT_CRC: prints the name of a CRC and its value in stored order, least significant byte first.
class CmdPrintCrc final : public CmdApi {
public:
    void setCrcName(std::string name);

    bool execute(CmdContext& context) override;
    std::uint32_t getCmdType() const override { return number(CmdType::PrintCrc); }

private:
    std::string crcName_;
};

}  // namespace Parser::WrapperLib
