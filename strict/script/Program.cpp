#include "strict/script/Program.hpp"

#include <cstddef>
#include <utility>

#include "parser/commands/Conventions.hpp"

namespace Strict {

Program::Program(std::unique_ptr<const ScriptText> text, Parser::StatementList statements,
                 Commands commands, Paths paths)
    : text_(std::move(text)),
      statements_(std::move(statements)),
      commands_(std::move(commands)),
      paths_(std::move(paths)) {
    using Parser::Role;
    for (std::size_t i = 0; i < statements_.size(); ++i)
        for (const Parser::Part& part : statements_[i].parts)
            if (part.role == Role::MakesImage || Parser::makesValue.has(part.role))
                names_.insert(part.text);
}

std::string Program::pathOf(const Parser::Part& part) const {
    const auto path = paths_.find(part.text.data());
    return path == paths_.end() ? Parser::WrapperLib::cleanedPath(std::string(part.text))
                                : path->second;
}

}  // namespace Strict
