#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "parser/commands/CmdApi.hpp"
#include "parser/commands/CmdPrintText.hpp"
#include "parser/commands/LateNumber.hpp"
#include "parser/grammar/Position.hpp"
#include "parser/grammar/Statement.hpp"

namespace Parser {

/// The statement that is being parsed and those that are finished, with the trace of the parser's
/// actions. A statement that fails to parse leaves its trace and never reaches `commands`.
class StatementBuilder {
public:
    /// @param calculator  evaluates the bracket expression of a PRINT_TEXT
    explicit StatementBuilder(WrapperLib::TextCalculator calculator) : calculator_(calculator) {}

    /// A text is about to be parsed.
    void beginText() { lastTokens_.clear(); }

    /// Forgets everything but the finished statements.
    void reset();

    /// Starts a statement of kind `Command` with its default values.
    template <class Command>
    void begin(const char* traceText, Position first, Position last) {
        reset();
        if (keepsStatements_) statements_.beginStatement();
        step(traceText, Role::Keyword, first, last);
        if constexpr (std::is_constructible_v<Command, WrapperLib::TextCalculator>)
            currentCmd_ = std::make_unique<Command>(calculator_);
        else
            currentCmd_ = std::make_unique<Command>();
    }

    /// Finishes the statement [`first`, `last`) and queues it.
    void end(Position first, Position last);

    /// Keeps what the statements of later parses say, for a front end that asks.
    ///
    /// @param length  of all texts that will be parsed, in characters
    void keepStatements(std::size_t length) {
        keepsStatements_ = true;
        statements_.expect(length);
    }

    bool keepsStatements() const { return keepsStatements_; }

    /// What each of `commands` says, if that is kept.
    const StatementList& statements() const { return statements_; }

    /// Notes that an action ran on the text [`first`, `last`), and what that is to the statement.
    void step(const char* traceText, Role role, Position first, Position last,
              std::uint32_t choice = 0) {
        lastTokens_ += traceText;
        if (keepsStatements_ && role != Role::None)
            statements_.add(role, choice, {first, static_cast<std::size_t>(last - first)});
    }

    /// The statement being parsed, which is of kind `Command`.
    template <class Command>
    Command& command() {
        return static_cast<Command&>(*currentCmd_);
    }

    /// Notes the text argument of a PRINT_TEXT, which has no trace text.
    void setText(Position first, Position last) {
        currentText_.assign(first, last);
        step("", Role::Text, first, last);
    }
    const std::string& text() const { return currentText_; }

    /// Notes the number that the text [`first`, `last`) means, for the part that comes next.
    void noteValue(const WrapperLib::Amount& amount, Position first, Position last) {
        if (amount.late && currentCmd_) currentCmd_->addLate(amount.late);
        if (keepsStatements_)
            statements_.add({static_cast<std::uint32_t>(amount.number),
                             {first, static_cast<std::size_t>(last - first)},
                             amount.late.get()});
    }

    /// Notes what a number that is being read asks.
    void noteQuery(Role role, Position first, Position last) {
        if (keepsStatements_)
            statements_.addWithin(role, {first, static_cast<std::size_t>(last - first)});
    }

    /// Notes a CALCULATE, which makes no statement: its text goes on to the next closing bracket.
    void noteCalculation(Position first, Position last) {
        if (keepsStatements_)
            calculations_.emplace_back(first, static_cast<std::size_t>(last - first));
    }
    const std::vector<std::string_view>& calculations() const { return calculations_; }

    void collectValue(const WrapperLib::Amount& amount) { valueCollection_.add(amount); }
    const WrapperLib::AmountList& collectedValues() const { return valueCollection_; }
    WrapperLib::AmountList takeCollectedValues() { return std::exchange(valueCollection_, {}); }

    /// An area whose numbers may not be known yet.
    struct AreaAmounts {
        WrapperLib::Amount start;
        WrapperLib::Amount length;
        Buffer::Area value() const { return {start.value(), length.value()}; }
    };
    void setAreaStart(const WrapperLib::Amount& start) { area_.start = start; }
    void setAreaLength(const WrapperLib::Amount& length) { area_.length = length; }
    const AreaAmounts& area() const { return area_; }

    /// The finished statements in script order.
    const std::deque<std::unique_ptr<WrapperLib::CmdApi>>& commands() const { return commands_; }

    /// Hands the finished statements over.
    StatementList takeStatements() { return std::exchange(statements_, {}); }
    std::deque<std::unique_ptr<WrapperLib::CmdApi>> takeCommands() {
        return std::exchange(commands_, {});
    }

    /// Deletes all statements.
    void clear();

    /// The text of the last finished statement; empty once another keyword was met.
    const std::string& lastCommand() const { return lastCommand_; }

    /// The trace of the last statement.
    const std::string& lastTokens() const { return lastTokens_; }

private:
    WrapperLib::TextCalculator calculator_;
    bool keepsStatements_ = false;
    StatementList statements_;
    std::vector<std::string_view> calculations_;
    std::unique_ptr<WrapperLib::CmdApi> currentCmd_;
    std::deque<std::unique_ptr<WrapperLib::CmdApi>> commands_;
    std::string currentText_;
    WrapperLib::AmountList valueCollection_;
    AreaAmounts area_;
    std::string lastTokens_;
    std::string lastCommand_;
};

}  // namespace Parser
