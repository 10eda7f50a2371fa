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
    commands_.push_back(std::move(currentCmd_));
    if (observer_ != nullptr) observer_->onStatement(first, last);
}

void StatementBuilder::clear() {
    currentCmd_.reset();
    commands_.clear();
}

}  // namespace Parser
