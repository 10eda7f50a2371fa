#include "strict/script/ProgramMaker.hpp"

#include "strict/script/PathArgument.hpp"

namespace Strict {

using Parser::Role;

void ProgramMaker::begin(std::unique_ptr<Parser::WrapperLib::CmdApi> command,
                         std::string_view keyword) {
    drafts_.push_back({text_.size(), 0, {}});
    commands_.push_back(std::move(command));
    add(Role::Keyword, keyword);
}

void ProgramMaker::add(Role role, const Piece& piece, std::uint32_t choice) {
    drafts_.back().parts.push_back(
        {role, choice, text_.size(), piece.text().size(), piece.numbers(), {}});
    text_ += piece.text();
}

void ProgramMaker::addPath(Role role, const std::string& path, std::uint32_t choice) {
    add(" ");
    add(role, argumentOf(path).text, choice);
    drafts_.back().parts.back().path = path;
}

void ProgramMaker::end() {
    text_ += '\n';
    drafts_.back().size = text_.size() - drafts_.back().at;
}

/// The text moves while it grows, so its parts are found when it is whole.
Program ProgramMaker::finish(std::string name) {
    auto script = std::make_unique<const ScriptText>(std::move(name), std::move(text_));
    const std::string_view text = script->prepared();
    Parser::StatementList statements;
    Program::Paths paths;
    for (std::size_t i = 0; i < drafts_.size(); ++i) {
        statements.beginStatement();
        for (const DraftPart& part : drafts_[i].parts) {
            for (const Piece::PlacedNumber& number : part.numbers)
                statements.add({number.value, text.substr(part.at + number.at, number.size)});
            statements.add(part.role, part.choice, text.substr(part.at, part.size));
            if (!part.path.empty()) paths.emplace(text.substr(part.at).data(), part.path);
        }
        statements.endStatement(
            static_cast<Parser::WrapperLib::CmdType>(commands_[i]->getCmdType()),
            text.substr(drafts_[i].at, drafts_[i].size));
    }
    return {std::move(script), std::move(statements), std::move(commands_), std::move(paths)};
}

}  // namespace Strict
