#pragma once

#include <cstdint>

#include "parser/commands/CmdContext.hpp"

namespace Parser::WrapperLib {

enum class CmdType : std::uint32_t {
    NewBuffer = 0,
    FillBuffer = 1,
    PrintBuffer = 2,
    NewCrc = 3,
    PrintCrc = 4,
    NewHash = 5,
    PrintHash = 6,
    WriteFile = 7,
    PrintText = 8,
    CallApp = 9,
    VerifyBuffer = 10
};

/// One statement of a script. The parser fills its fields while it reads the statement; the runner
/// executes it once, after the whole script has parsed.
class CmdApi {
public:
    CmdApi() = default;
    virtual ~CmdApi() = default;
    CmdApi(const CmdApi&) = delete;
    CmdApi& operator=(const CmdApi&) = delete;

    /// Does the work of the statement. False when it failed; it has printed why and changed
    /// nothing in `context`. No exception derived from std::exception leaves.
    virtual bool execute(CmdContext& context) = 0;

    /// The CmdType of the statement as a number.
    virtual std::uint32_t getCmdType() const = 0;

protected:
    static constexpr std::uint32_t number(CmdType type) { return static_cast<std::uint32_t>(type); }
};

}  // namespace Parser::WrapperLib
