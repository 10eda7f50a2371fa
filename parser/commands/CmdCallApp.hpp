#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "parser/commands/CmdApi.hpp"

namespace Parser::WrapperLib {

/// CALL_APP: runs another program, with the values of CRCs and hashes in place of their names in
/// its arguments, and waits for its end. Its outcome is ignored.
class CmdCallApp final : public CmdApi {
public:
    /// @param argument  the path as written in the script, delimiters included
    void setAppLocation(std::string argument);

    /// @param argument  the argument text as written in the script, delimiters included
    void setArguments(std::string argument);

    /// A name to resolve in the argument text; longer names are resolved first, names of one
    /// length in script order.
    void addSymbol(std::string name);

    bool execute(CmdContext& context) override;
    std::uint32_t getCmdType() const override { return number(CmdType::CallApp); }

private:
    std::string arguments_;
    std::string appLocation_;
    std::vector<std::string> symbols_;
};

}  // namespace Parser::WrapperLib
