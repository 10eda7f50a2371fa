#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "parser/grammar/Expectations.hpp"
#include "parser/grammar/ScriptSyntax.hpp"
#include "parser/grammar/Statement.hpp"
#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/script/Program.hpp"
#include "strict/script/ScriptText.hpp"

namespace Strict {

/// A text that does not parse.
struct BrokenText {
    std::size_t offset;               ///< in the prepared text, of what could not be read
    std::size_t statementsBefore;     ///< that were finished before it
    std::vector<Parser::Part> begun;  ///< as much of a statement as was read
    Parser::Expectations missed;      ///< how far the grammar came, and what could have been there
    Diagnostic diagnostic;
};

/// The statements of a script, as values and as commands, and what is not a statement.
///
/// After a text that does not parse, the parse goes on at the next line that begins with the
/// keyword of a statement, up to twenty times.
class ParsedScript {
public:
    /// @param script  lives at least as long as this
    explicit ParsedScript(const ScriptText& script);

    /// Everything parsed.
    bool isWhole() const { return broken_.empty(); }

    const std::vector<BrokenText>& broken() const { return broken_; }

    const Parser::StatementList& statements() const { return builder().statements(); }

    /// The texts of each CALCULATE, which is not a statement.
    const std::vector<std::string_view>& calculations() const { return builder().calculations(); }

    /// What executes each of `statements`.
    const std::deque<std::unique_ptr<Parser::WrapperLib::CmdApi>>& commands() const {
        return builder().commands();
    }

    /// Hands the statements over, with the text of the script.
    Program takeProgram(std::unique_ptr<const ScriptText> script) {
        Parser::StatementBuilder& builder = syntax_.state().statement;
        return {std::move(script), builder.takeStatements(), builder.takeCommands()};
    }

    /// The words that begin a statement.
    const std::vector<std::string_view>& keywords() const { return syntax_.statementKeywords(); }

private:
    const Parser::StatementBuilder& builder() const { return syntax_.state().statement; }
    void explain(BrokenText& broken, const ScriptText& script, std::size_t resumed) const;

    Parser::ScriptSyntax syntax_;
    std::vector<BrokenText> broken_;
};

}  // namespace Strict
