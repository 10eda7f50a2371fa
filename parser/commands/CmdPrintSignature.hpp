#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "parser/commands/CmdApi.hpp"

namespace Parser::WrapperLib {

/// PRINT_SIGNATURE: prints the name of a signature and its bytes.
class CmdPrintSignature final : public CmdApi {
public:
    void setSignatureName(std::string name) { name_ = std::move(name); }

    bool execute(CmdContext& context) override;
    std::uint32_t getCmdType() const override { return number(CmdType::PrintSignature); }

private:
    std::string name_;
};

}  // namespace Parser::WrapperLib
