#include "parser/grammar/StatementBuilder.hpp"

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
    if (keepsStatements_)
        statements_.endStatement(static_cast<WrapperLib::CmdType>(currentCmd_->getCmdType()),
                                 {first, static_cast<std::size_t>(last - first)});
    commands_.push_back(std::move(currentCmd_));
}

void StatementBuilder::clear() {
    currentCmd_.reset();
    commands_.clear();
    statements_ = {};
    calculations_.clear();
}

}  // namespace Parser
