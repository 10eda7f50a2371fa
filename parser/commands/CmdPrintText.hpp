#pragma once

#include <string>
#include <vector>

#include "parser/commands/CmdApi.hpp"

namespace Parser::WrapperLib {

/// Evaluates the bracket expression that a text may hold. It needs the script grammar, which
/// stands above the statements, and so comes in from there.
using TextCalculator = std::string (*)(const std::string& text);

/// PRINT_TEXT: prints a text in which names stand for CRCs and hashes and one expression in
/// brackets for its value.
class CmdPrintText : public CmdApi {
public:
    explicit CmdPrintText(TextCalculator calculator) : calculate(calculator) {}

    /// @param argument  the argument as it stands in the script, delimiters included
    void setText(std::string argument);

    /// A name to resolve; the name given last is resolved first.
    void addSymbol(std::string name);

    bool execute(CmdContext& context) override;
    std::uint32_t getCmdType() const override { return number(CmdType::PrintText); }

protected:
    std::string text;
    std::vector<std::string> symbols;

private:
    TextCalculator calculate;
};

}  // namespace Parser::WrapperLib
