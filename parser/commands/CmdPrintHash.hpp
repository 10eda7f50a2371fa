#pragma once

#include <cstdint>
#include <string>

#include "parser/commands/CmdPrintText.hpp"

namespace Parser::WrapperLib {

/// PRINT_HASH: prints the name of a hash and its value. The name is in `text`.
class CmdPrintHash final : public CmdPrintText {
public:
    CmdPrintHash() : CmdPrintText(nullptr) {}

    void setHashName(std::string name);

    bool execute(CmdContext& context) override;
    std::uint32_t getCmdType() const override { return number(CmdType::PrintHash); }
};

}  // namespace Parser::WrapperLib
