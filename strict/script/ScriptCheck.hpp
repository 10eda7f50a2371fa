#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "parser/grammar/Statement.hpp"
#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/diagnostics/PendingList.hpp"
#include "strict/script/ParsedScript.hpp"
#include "strict/script/ScriptText.hpp"

namespace Strict {

/// Checks the statements of a script for what can be known before the first of them runs: unknown
/// and duplicate names, digests that compute nothing, values above a byte, numbers and expressions
/// that mean something else than they say, arguments without effect.
///
/// It asks for the roles of a statement's parts, so a new statement needs no change here.
class ScriptCheck {
public:
    ScriptCheck(const ScriptText& script, DiagnosticSink& sink) : script_(&script), sink_(&sink) {}

    /// Reports what is wrong, in the order of the text: texts that do not parse as well.
    void check(const ParsedScript& parsed);

    /// Checks one statement, after those before it. What is wrong is kept for `reportFound`.
    void check(const Parser::Statement& statement);

    /// Reports what was found since the last call.
    void reportFound() { pending_.moveTo(*sink_); }

private:
    /// The names of one registry, with where each was made.
    using Names = std::map<std::string, std::string_view, std::less<>>;

    void checkNames(const Parser::Statement& statement);
    void checkUse(const Parser::Part& part);
    void checkHash(const Parser::Statement& statement);
    void checkSignature(const Parser::Statement& statement);
    void checkTexts(const Parser::Statement& statement);
    void checkText(const Parser::Part& part);
    void checkCalculation(std::string_view text);
    bool hasKeyword(std::string_view text) const;
    void checkEffects(const Parser::Statement& statement);
    void checkSettings(const Parser::Statement& statement);
    void checkSymbols(const Parser::Statement& statement);
    void checkQuote(const Parser::Part& part);
    void checkPath(const Parser::Part& part);
    void makeNames(std::span<const Parser::Part> parts);
    void define(Names& names, std::string_view name, const std::string& what);
    void use(const Names& names, std::string_view name, const char* what);
    void useValue(std::string_view name);
    void report(Kind kind, std::string text, std::string_view part, std::string hint = {},
                std::optional<Correction> correction = {});

    /// What does not parse goes on in the line of the last statement, so that one is the broken
    /// one.
    bool isBroken(const Parser::Statement& last, const BrokenText& broken) const;

    const ScriptText* script_;
    DiagnosticSink* sink_;
    std::vector<std::string_view> keywords_;  ///< that begin a statement or a directive
    std::size_t suggestions_ = 0;             ///< that were looked for
    /// What was found in the last statement, which may yet turn out to be broken.
    PendingList pending_;
    Names images_;
    std::map<Parser::Role, Names> values_;  ///< of each kind, by the role of their users
};

}  // namespace Strict
