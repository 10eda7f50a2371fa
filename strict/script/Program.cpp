#include "strict/script/Program.hpp"

namespace Strict {

Program::Program(std::unique_ptr<const ScriptText> text, std::vector<Parser::Statement> statements,
                 Commands commands)
    : text_(std::move(text)), statements_(std::move(statements)), commands_(std::move(commands)) {
    using Parser::Role;
    for (const Parser::Statement& statement : statements_)
        for (const Parser::Part& part : statement.parts)
            if (part.role == Role::MakesImage || part.role == Role::MakesCrc ||
                part.role == Role::MakesHash)
                names_.insert(part.text);
}

}  // namespace Strict
