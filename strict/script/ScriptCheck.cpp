#include "strict/script/ScriptCheck.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "inspect/Words.hpp"
#include "parser/commands/CmdApi.hpp"
#include "strict/diagnostics/Suggestion.hpp"
#include "strict/script/Arithmetic.hpp"

namespace Strict {

namespace {

using Parser::WrapperLib::CmdType;

constexpr std::uint32_t number(CmdType type) {
    return static_cast<std::uint32_t>(type);
}

/// The words that begin a statement.
constexpr std::array<std::string_view, 10> statementWords{
    "NEW_BUFFER", "FILL_BUFFER", "PRINT_TEXT", "PRINT_BUFFER", "PRINT_CRC",
    "PRINT_HASH", "WRITE_FILE",  "NEW_CRC",    "NEW_HASH",     "CALL_APP"};

bool isNumber(std::string_view text) {
    return !text.empty() && text.front() >= '0' && text.front() <= '9';
}

}  // namespace

void ScriptCheck::onStep(const char* trace, Parser::Position first, Parser::Position last) {
    const std::string_view name = trace;
    if (name.ends_with("Begin -> ")) {
        pending_.moveTo(*sink_);
        steps_.clear();
        values_.clear();
        bytesFrom_ = 0;
    }
    const std::string_view text(first, static_cast<std::size_t>(last - first));
    steps_.push_back({name, text});
    const bool takesBytes =
        name == "SetHexList -> " || name == "SetFillPattern -> " || name == "SetFillValues -> ";
    if (takesBytes)
        for (std::size_t i = bytesFrom_; i < values_.size(); ++i)
            if (values_[i].value > 0xFF)
                report(Kind::TruncatedValue,
                       "the value does not fit into a byte, only its low eight "
                       "bits count",
                       values_[i].text);
    if (name == "AddArea -> " || name == "SetBufferRange -> ") checkArea();
    bytesFrom_ = values_.size();
}

void ScriptCheck::checkArea() {
    if (values_.size() - bytesFrom_ != 2) return;
    const std::uint64_t start = values_[bytesFrom_].value;
    const std::uint64_t length = values_[bytesFrom_ + 1].value;
    // Memories begin at high addresses and are small beside them.
    constexpr std::uint64_t highAddress = std::uint64_t{1} << 24U;
    const bool isLikeEnd = start >= highAddress && length > start && length - start < start / 2;
    if (isLikeEnd)
        report(Kind::EndAsLength, "this length looks like an end address", values_.back().text,
               "the length up to that address is " + Inspect::hexText(length - start));
}

void ScriptCheck::onValue(std::uint32_t value, Parser::Position first, Parser::Position last) {
    values_.push_back({value, {first, static_cast<std::size_t>(last - first)}});
}

void ScriptCheck::onStatement(Parser::Position first, Parser::Position last) {
    const std::string_view statement(first, static_cast<std::size_t>(last - first));
    const std::size_t offset = script_->offsetOf(statement);
    statements_.push_back({offset, offset + statement.size()});
    const std::uint32_t type = state_->statement.commands().back()->getCmdType();
    checkNames(type);
    checkTexts(type, statement);
    checkSymbols(statement);
    checkValues();
}

void ScriptCheck::abandon(std::size_t offset) {
    if (!statements_.empty()) {
        const std::string_view text = script_->prepared();
        const Range& last = statements_.back();
        const std::size_t end = text.find_last_not_of(" \t\n\v\f\r", last.last - 1) + 1;
        // What goes on in the same line belongs to the statement.
        const bool isSameLine =
            offset <= end || text.substr(end, offset - end).find('\n') == std::string_view::npos;
        if (isSameLine) pending_.clear();
    }
    pending_.moveTo(*sink_);
    const Step* const name = stepOf("SetName -> ");
    if (name != nullptr && stepOf("CmdNewBuffer: Begin -> ") != nullptr)
        buffers_.try_emplace(std::string(name->text), name->text);
    if (const Step* const crc = stepOf("SetCrcName -> "))
        crcs_.try_emplace(std::string(crc->text), crc->text);
    if (const Step* const hash = stepOf("SetHashName -> "))
        hashes_.try_emplace(std::string(hash->text), hash->text);
}

const ScriptCheck::Step* ScriptCheck::stepOf(std::string_view trace) const {
    const auto found = std::ranges::find(steps_, trace, &Step::trace);
    return found == steps_.end() ? nullptr : &*found;
}

void ScriptCheck::checkUse(const Step& step, std::uint32_t type) {
    const bool isName = step.trace == "SetName -> ";
    const bool isImage =
        step.trace == "AddBufferAsSource -> " || step.trace == "AddFromBuffer -> " ||
        step.trace == "AddBufferToExportList -> " ||
        (isName && (type == number(CmdType::FillBuffer) || type == number(CmdType::PrintBuffer)));
    if (isImage) use(buffers_, step.text, "image");
    if (step.trace == "SetFillCrc -> " || (isName && type == number(CmdType::PrintCrc)))
        use(crcs_, step.text, "CRC");
    if (step.trace == "SetFillHash -> " || (isName && type == number(CmdType::PrintHash)))
        use(hashes_, step.text, "hash");
}

void ScriptCheck::checkNames(std::uint32_t type) {
    // A statement sees the names of those before it, so what it makes comes last.
    for (const Step& step : steps_) checkUse(step, type);
    const Step* const name = stepOf("SetName -> ");
    if (name != nullptr && type == number(CmdType::NewBuffer))
        define(buffers_, name->text, "image");
    if (const Step* const crc = stepOf("SetCrcName -> ")) define(crcs_, crc->text, "CRC");
    const Step* const hash = stepOf("SetHashName -> ");
    if (hash == nullptr) return;
    define(hashes_, hash->text, "hash");
    const auto chosen = std::find_if(steps_.rbegin(), steps_.rend(), [](const Step& step) {
        return step.trace.starts_with("SetHash_");
    });
    if (chosen == steps_.rend())
        report(Kind::EmptyDigest, "the hash has no -setType and computes nothing", hash->text,
               "add -setType=Hash_Sha2_256 or another type");
    else if (chosen->text == "Hash_Md6" || chosen->text == "Hash_Shake")
        report(Kind::EmptyDigest, std::string(chosen->text) + " computes nothing", chosen->text,
               "choose another type");
}

void ScriptCheck::define(Names& names, std::string_view name, const char* what) {
    const auto [entry, isNew] = names.try_emplace(std::string(name), name);
    if (isNew || !pending_.wants(Kind::DuplicateName)) return;
    Diagnostic diagnostic{Kind::DuplicateName,
                          "there is already a" + std::string(*what == 'i' ? "n " : " ") + what +
                              " called " + std::string(name),
                          script_->placeOf(name),
                          "this one would be dropped",
                          {}};
    diagnostic.notes.push_back({"the first one is made here", script_->placeOf(entry->second)});
    pending_.add(std::move(diagnostic));
}

void ScriptCheck::use(const Names& names, std::string_view name, const char* what) {
    if (names.contains(name)) return;
    std::vector<std::string> known;
    // Each suggestion walks through all names.
    constexpr std::size_t mostSuggestions = 100;
    if (suggestions_++ < mostSuggestions)
        for (const auto& [other, place] : names) known.push_back(other);
    std::string hint;
    if (const auto close = nearest(name, known))
        hint = "did you mean " + *close + " (line " +
               std::to_string(script_->placeOf(names.at(*close)).line) + ")?";
    report(Kind::UnknownName, "no " + std::string(what) + " is called " + std::string(name), name,
           hint);
}

void ScriptCheck::checkTexts(std::uint32_t type, std::string_view statement) {
    constexpr std::array<std::string_view, 9> textSteps{
        "SetRawFileAsSource -> ", "SetFileAsSource -> ",      "SetElfFileAsSource -> ",
        "SetUf2FileAsSource -> ", "SetTiTxtFileAsSource -> ", "SetFileName -> ",
        "SetAppLocation -> ",     "SetArguments -> ",         ""};
    for (const Step& step : steps_) {
        const bool isText = std::ranges::find(textSteps, step.trace) != textSteps.end();
        // The last step of a PRINT_TEXT covers all of it.
        if (!isText || step.text.data() == statement.data()) continue;
        const std::size_t feed = step.text.find('\n');
        const auto holds = [&](std::string_view word) {
            return step.text.find(word) != std::string_view::npos;
        };
        const bool isSwallowing =
            feed != std::string_view::npos && std::ranges::any_of(statementWords, holds);
        const bool isStatement =
            std::ranges::find(statementWords, step.text) != statementWords.end();
        if (!isSwallowing && !isStatement) continue;
        const std::string_view shown = step.text.substr(0, feed);
        const bool hasRemark = script_->placeOf(shown).excerpt.find("//") != std::string::npos;
        report(Kind::Swallowed,
               isStatement ? "the text of this statement is the next keyword"
                           : "this text goes on over the next statement",
               shown,
               hasRemark ? "a remark begins with //, in a text as well"
                         : "is a closing brace or the text missing?");
    }
    const Step* const section = stepOf("SetExecutionStartAddress -> ");
    if (section != nullptr && isNumber(section->text) &&
        statement.substr(0, static_cast<std::size_t>(section->text.data() - statement.data()))
                .find("-setExecutionAddress") != std::string_view::npos)
        report(Kind::ExecutionAddress,
               "-setExecutionAddress sets the name of a section, not a start address",
               section->text, "give the address without an option: " + std::string(section->text));
    if (type == number(CmdType::FillBuffer) && stepOf("SetFillString -> ") != nullptr &&
        stepOf("AddArea -> ") == nullptr)
        report(Kind::NoEffect, "WITH_STRING writes nothing without an area",
               stepOf("SetFillString -> ")->text, "add -useAreas={{start, length}}");
}

void ScriptCheck::checkSymbols(std::string_view statement) {
    const Step* const first = stepOf("AddResolveSymbolName -> ");
    if (first == nullptr) return;
    const std::string_view before =
        statement.substr(0, static_cast<std::size_t>(first->text.data() - statement.data()));
    for (const Step& step : steps_) {
        if (step.trace != "AddResolveSymbolName -> ") continue;
        if (!crcs_.contains(step.text) && !hashes_.contains(step.text)) {
            Names symbols = crcs_;
            symbols.insert(hashes_.begin(), hashes_.end());
            use(symbols, step.text, "CRC or hash");
        }
        if (before.find(step.text) == std::string_view::npos)
            report(Kind::SymbolUnused,
                   std::string(step.text) + " does not occur in the text of this statement",
                   step.text);
    }
}

void ScriptCheck::checkValues() {
    for (const Value& value : values_) checkExpression(value);
    for (const Step& step : steps_)
        if (step.trace == "SetStartAddress -> ") {
            const std::size_t equals = step.text.find('=');
            checkExpression({0, step.text.substr(equals + 1)});
        }
}

void ScriptCheck::checkExpression(const Value& value) {
    const Arithmetic arithmetic(value.text);
    if (arithmetic.hasPair()) {
        report(Kind::NumberPair, "of two numbers side by side only the last one counts", value.text,
               "separate them by a comma");
        return;
    }
    if (arithmetic.usual() == arithmetic.language()) return;
    report(Kind::ExpressionOrder,
           "this is " + Inspect::hexText(arithmetic.language()) +
               ", since an operator takes everything "
               "to its right; by the usual order it would be " +
               Inspect::hexText(arithmetic.usual()),
           value.text, "use parentheses, as in (8-4)-2");
}

void ScriptCheck::report(Kind kind, std::string text, std::string_view part, std::string hint) {
    if (!pending_.wants(kind)) return;
    part = part.substr(0, part.find_last_not_of(" \t\n\v\f\r") + 1);
    pending_.add({kind, std::move(text), script_->placeOf(part), std::move(hint),
                  script_->variableNotes(part)});
}

}  // namespace Strict
