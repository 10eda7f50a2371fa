#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "parser/commands/CmdApi.hpp"

namespace Parser::WrapperLib {

/// Evaluates the bracket expression that a text may hold; nothing after a report. That needs the
/// script grammar, which is above the statements and hands the function in.
using TextCalculator = std::optional<std::string> (*)(const std::string& text, CmdContext& context);

/// PRINT_TEXT: prints a text with the values of CRCs and hashes in place of their names and the
/// value of one expression in place of its brackets.
class CmdPrintText : public CmdApi {
public:
    explicit CmdPrintText(TextCalculator calculator) : calculate_(calculator) {}

    /// @param argument  the argument as written in the script, delimiters included
    void setText(std::string argument);

    /// A name to resolve; the name given last is resolved first.
    void addSymbol(std::string name);

    bool execute(CmdContext& context) override;
    std::uint32_t getCmdType() const override { return number(CmdType::PrintText); }

protected:
    std::string text_;
    std::vector<std::string> symbols_;

private:
    TextCalculator calculate_;
};

}  // namespace Parser::WrapperLib
