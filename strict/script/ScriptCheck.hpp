#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "parser/grammar/ParserState.hpp"
#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/diagnostics/PendingList.hpp"
#include "strict/script/ScriptText.hpp"

namespace Strict {

/// Checks the statements of a script while they are parsed, for what can be known before the first
/// of them runs: unknown and duplicate names, digests that compute nothing, values above a byte,
/// numbers and expressions that mean something else than they say, arguments without effect.
class ScriptCheck final : public Parser::ParseObserver {
public:
    /// @param script  the text that is parsed
    /// @param state   of the parser
    ScriptCheck(const ScriptText& script, const Parser::ParserState& state, DiagnosticSink& sink)
        : script_(&script), state_(&state), sink_(&sink) {}

    void onStep(const char* trace, Parser::Position first, Parser::Position last) override;
    void onValue(std::uint32_t value, Parser::Position first, Parser::Position last) override;
    void onStatement(Parser::Position first, Parser::Position last) override;

    /// Where each finished statement is in the prepared text.
    struct Range {
        std::size_t first;
        std::size_t last;
    };
    const std::vector<Range>& statements() const { return statements_; }

    /// The text from `offset` on does not parse. What the statement there would have made counts as
    /// known. If it goes on in the line of the last finished statement, that one is the broken one,
    /// and what was found in it is dropped.
    void abandon(std::size_t offset);

    /// Reports what is left. Called once, after the last statement.
    void finish() { pending_.moveTo(*sink_); }

    /// A statement makes something of that name, whether it will succeed or not.
    bool isMade(std::string_view name) const {
        return buffers_.contains(name) || crcs_.contains(name) || hashes_.contains(name);
    }

private:
    struct Step {
        std::string_view trace;
        std::string_view text;
    };
    struct Value {
        std::uint32_t value;
        std::string_view text;
    };
    /// The names of one registry, with where each was made.
    using Names = std::map<std::string, std::string_view, std::less<>>;

    void checkNames(std::uint32_t type);
    void checkTexts(std::uint32_t type, std::string_view statement);
    void checkSymbols(std::string_view statement);
    void checkValues();
    void checkExpression(const Value& value);
    void define(Names& names, std::string_view name, const char* what);
    void checkArea();
    void checkUse(const Step& step, std::uint32_t type);
    void use(const Names& names, std::string_view name, const char* what);
    void report(Kind kind, std::string text, std::string_view part, std::string hint = {});
    const Step* stepOf(std::string_view trace) const;

    const ScriptText* script_;
    const Parser::ParserState* state_;
    DiagnosticSink* sink_;
    std::vector<Step> steps_;
    std::vector<Value> values_;
    std::size_t bytesFrom_ = 0;    ///< the values of `values_` that no step has taken yet
    std::size_t suggestions_ = 0;  ///< that were looked for
    std::vector<Range> statements_;
    /// What was found in the last statement, which may yet turn out to be broken.
    PendingList pending_;
    Names buffers_, crcs_, hashes_;
};

}  // namespace Strict
