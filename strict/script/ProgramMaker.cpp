#include "strict/script/ProgramMaker.hpp"

namespace Strict {

using Parser::Number;
using Parser::Part;
using Parser::Role;
using Parser::Statement;

void ProgramMaker::begin(std::unique_ptr<Parser::WrapperLib::CmdApi> command,
                         std::string_view keyword) {
    begun_ = text_.size();
    Statement& statement = statements_.emplace_back();
    statement.kind = static_cast<Parser::WrapperLib::CmdType>(command->getCmdType());
    commands_.push_back(std::move(command));
    add(Role::Keyword, keyword);
}

void ProgramMaker::add(Role role, const Piece& piece, std::uint32_t choice) {
    Statement& statement = statements_.back();
    for (const Piece::PlacedNumber& number : piece.numbers()) {
        numberSpans_.push_back({text_.size() + number.at, number.size});
        statement.numbers.push_back({number.value, {}});
    }
    partSpans_.push_back({text_.size(), piece.text().size()});
    statement.parts.push_back({role,
                               choice,
                               {},
                               statement.numbers.size() - piece.numbers().size(),
                               piece.numbers().size()});
    text_ += piece.text();
}

void ProgramMaker::end() {
    text_ += '\n';
    statementSpans_.push_back({begun_, text_.size() - begun_});
}

/// The text moves while it grows, so its parts are found when it is whole.
Program ProgramMaker::finish(std::string name) {
    auto text = std::make_unique<const ScriptText>(std::move(name), std::move(text_));
    const auto at = [whole = text->prepared()](const Span& span) {
        return whole.substr(span.at, span.size);
    };
    auto statementSpan = statementSpans_.begin();
    auto partSpan = partSpans_.begin();
    auto numberSpan = numberSpans_.begin();
    for (Statement& statement : statements_) {
        statement.text = at(*statementSpan++);
        for (Part& part : statement.parts) part.text = at(*partSpan++);
        for (Number& number : statement.numbers) number.text = at(*numberSpan++);
    }
    return {std::move(text), std::move(statements_), std::move(commands_)};
}

}  // namespace Strict
