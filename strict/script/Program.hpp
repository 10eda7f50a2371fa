#pragma once

#include <deque>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "parser/commands/CmdApi.hpp"
#include "parser/grammar/Statement.hpp"
#include "strict/script/ScriptText.hpp"

namespace Strict {

/// What a run executes: statements, as values and as commands, and the text that they lie in.
class Program {
public:
    using Commands = std::deque<std::unique_ptr<Parser::WrapperLib::CmdApi>>;

    /// The paths of parts that name a file, by where the text of the part begins.
    using Paths = std::map<const char*, std::string>;

    /// @param statements  whose texts lie in the prepared text of `text`
    /// @param commands    one for each of `statements`
    /// @param paths       those that the texts of their parts cannot express
    Program(std::unique_ptr<const ScriptText> text, Parser::StatementList statements,
            Commands commands, Paths paths = {});

    const ScriptText& text() const { return *text_; }
    const Parser::StatementList& statements() const { return statements_; }

    /// What executes each of `statements`.
    const Commands& commands() const { return commands_; }

    /// The path of the file that a part of a statement names.
    std::string pathOf(const Parser::Part& part) const;

    /// A statement makes something of that name, whether it will succeed or not.
    bool makes(std::string_view name) const { return names_.contains(name); }

private:
    std::unique_ptr<const ScriptText> text_;
    Parser::StatementList statements_;
    Commands commands_;
    Paths paths_;
    std::set<std::string_view> names_;  ///< that the statements make
};

}  // namespace Strict
