#include "parser/grammar/StatementBuilder.hpp"

#include <string_view>

namespace Parser {

void StatementBuilder::reset() {
    lastTokens_.clear();
    lastCommand_.clear();
    currentText_.clear();
    area_ = {};
    valueCollection_.clear();
}

void StatementBuilder::end(Position first, Position last) {
    lastTokens_ += "End";
    lastCommand_.append(first, last);
    if (keepsStatements_) {
        current_.kind = static_cast<WrapperLib::CmdType>(currentCmd_->getCmdType());
        current_.text = {first, static_cast<std::size_t>(last - first)};
        statements_.push_back(std::move(current_));
        current_ = {};
    }
    commands_.push_back(std::move(currentCmd_));
}

/// The part takes the numbers that were read since the one before it.
void StatementBuilder::addPart(Role role, std::uint32_t choice, Position first, Position last) {
    const std::string_view text(first, static_cast<std::size_t>(last - first));
    const std::size_t end = text.find_last_not_of(" \t\n\v\f\r");
    const std::size_t taken = current_.parts.empty() ? 0
                                                     : current_.parts.back().firstNumber +
                                                           current_.parts.back().numberCount;
    current_.parts.push_back(
        {role, choice, text.substr(0, end + 1), taken, current_.numbers.size() - taken});
}

void StatementBuilder::clear() {
    currentCmd_.reset();
    commands_.clear();
    statements_.clear();
}

}  // namespace Parser
