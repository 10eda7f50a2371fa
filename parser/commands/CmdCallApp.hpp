#pragma once

#include <string>
#include <vector>

#include "parser/commands/CmdApi.hpp"

namespace Parser::WrapperLib {

/// CALL_APP: runs another program with a text in which names stand for CRCs and hashes, and waits
/// for its end. What becomes of the program is not looked at.
class CmdCallApp final : public CmdApi {
public:
    /// @param argument  the path as it stands in the script, delimiters included
    void setAppLocation(std::string argument);

    /// @param argument  the argument text as it stands in the script, delimiters included
    void setArguments(std::string argument);

    /// A name to resolve in the argument text; longer names are resolved first, names of one
    /// length in script order.
    void addSymbol(std::string name);

    bool execute(CmdContext& context) override;
    std::uint32_t getCmdType() const override { return number(CmdType::CallApp); }

private:
    std::string arguments;
    std::string appLocation;
    std::vector<std::string> symbols;
};

}  // namespace Parser::WrapperLib
