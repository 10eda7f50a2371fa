#include "parser/grammar/StatementBuilder.hpp"

namespace Parser {

void StatementBuilder::reset() {
    lastTokens_.clear();
    lastCommand_.clear();
    currentText_.clear();
    area_ = {};
    valueCollection_.clear();
}

void StatementBuilder::end(std::string_view statement) {
    trace("End");
    lastCommand_ += statement;
    commands_.push_back(std::move(currentCmd_));
}

void StatementBuilder::clear() {
    currentCmd_.reset();
    commands_.clear();
}

}  // namespace Parser
