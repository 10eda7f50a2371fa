#include "strict/script/Program.hpp"

#include <cstddef>

namespace Strict {

Program::Program(std::unique_ptr<const ScriptText> text, Parser::StatementList statements,
                 Commands commands)
    : text_(std::move(text)), statements_(std::move(statements)), commands_(std::move(commands)) {
    using Parser::Role;
    for (std::size_t i = 0; i < statements_.size(); ++i)
        for (const Parser::Part& part : statements_[i].parts)
            if (part.role == Role::MakesImage || part.role == Role::MakesCrc ||
                part.role == Role::MakesHash)
                names_.insert(part.text);
}

}  // namespace Strict
