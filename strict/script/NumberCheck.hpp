#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "parser/grammar/Statement.hpp"
#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/diagnostics/PendingList.hpp"
#include "strict/script/ScriptText.hpp"

namespace Strict {

/// Checks the numbers of statements: values that do not fit, lengths that look like end addresses,
/// images beyond the last address, expressions that leave 32 bits or mean something else than they
/// seem to. Numbers that ask images or symbols are checked when they are known.
class NumberCheck {
public:
    NumberCheck(const ScriptText& script, PendingList& pending)
        : script_(&script), pending_(&pending) {}

    /// Checks what is known before the run.
    void checkBefore(const Parser::Statement& statement);

    /// Checks the other numbers of a statement, all of which are known now.
    void checkSettled(const Parser::Statement& statement);

private:
    void check(const Parser::Statement& statement);
    void checkBytes(const Parser::Statement& statement, const Parser::Part& part);
    void checkArea(const Parser::Statement& statement, const Parser::Part& part);
    void checkExpression(const Parser::Number& number);
    void checkDecimal(const Parser::Number& number);
    void checkEnd(const Parser::Statement& statement);
    static std::optional<std::uint64_t> lengthOf(const Parser::Statement& statement);
    void report(Kind kind, std::string text, std::string_view part, std::string hint = {});

    const ScriptText* script_;
    PendingList* pending_;
    bool isLate_ = false;  ///< the numbers that ask for their values are checked
};

}  // namespace Strict
