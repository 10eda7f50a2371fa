#include "editor/Structure.hpp"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>
#include <utility>

#include "editor/Lexis.hpp"
#include "parser/commands/LateNumber.hpp"
#include "parser/grammar/Keywords.hpp"
#include "parser/grammar/Statement.hpp"
#include "parser/text/Characters.hpp"
#include "strict/script/Directives.hpp"

namespace Editor {

namespace {

using Parser::Part;
using Parser::Role;
using Parser::Statement;

/// The place of a part of the prepared text if it is in the script's own file.
std::optional<TextSpan> ownPlaceOf(const Script& script, std::string_view part) {
    if (part.empty()) return std::nullopt;
    const FilePlace place = filePlaceOf(*script.prepared(), part);
    return place.file == 0 ? std::optional(place.where) : std::nullopt;
}

struct MakingRole {
    Role role;
    OutlineEntry::Kind kind;
};

constexpr std::array makingRoles{
    MakingRole{Role::MakesImage, OutlineEntry::Kind::Image},
    MakingRole{Role::MakesCrc, OutlineEntry::Kind::Crc},
    MakingRole{Role::MakesHash, OutlineEntry::Kind::Hash},
    MakingRole{Role::MakesSignature, OutlineEntry::Kind::Signature},
    MakingRole{Role::OutputFile, OutlineEntry::Kind::Output},
};

/// The kind of a part by its role; nothing if its pieces have kinds of their own.
std::optional<TokenKind> kindOf(Role role) {
    switch (role) {
        case Role::Keyword:
            return TokenKind::Keyword;
        case Role::MakesImage:
        case Role::UsesImage:
        case Role::ChangesImage:
        case Role::MeasuresImage:
            return TokenKind::Image;
        case Role::MakesCrc:
        case Role::MakesHash:
        case Role::MakesSignature:
        case Role::UsesCrc:
        case Role::UsesHash:
        case Role::UsesSignature:
        case Role::UsesValue:
            return TokenKind::Value;
        case Role::InputFile:
        case Role::Template:
        case Role::OutputFile:
        case Role::SymbolFile:
        case Role::Symbol:
        case Role::KeyFile:
        case Role::Program:
        case Role::Text:
        case Role::String:
        case Role::Header:
            return TokenKind::String;
        case Role::Format:
        case Role::Overlap:
        case Role::ByteOrder:
        case Role::Family:
        case Role::Form:
            return TokenKind::Word;
        default:
            return std::nullopt;
    }
}

/// Gives pieces of a text their kinds. What was marked first keeps its kind.
class Marks {
public:
    explicit Marks(std::string_view text) : text_(text), kinds_(text.size()) {}

    void add(TextSpan where, TokenKind kind, bool isMaking = false) {
        const std::size_t end = std::min(where.end(), text_.size());
        for (std::size_t at = where.at; at < end;) {
            while (at < end && (kinds_[at] != 0 || isBlank(text_[at]))) ++at;
            std::size_t stop = at;
            while (stop < end && kinds_[stop] == 0 && text_[stop] != '\n') kinds_[stop++] = 1;
            if (stop > at) tokens_.push_back({{at, stop - at}, kind, isMaking});
            at = stop;
        }
    }

    bool isFree(std::size_t at) const { return kinds_[at] == 0; }

    std::vector<Token> take() {
        std::ranges::sort(tokens_, {}, [](const Token& token) { return token.where.at; });
        return std::move(tokens_);
    }

private:
    std::string_view text_;
    std::vector<char> kinds_;  ///< 1 for what has a kind
    std::vector<Token> tokens_;
};

/// Marks the words and numbers of a statement that no part of it says.
class WordMarks {
public:
    /// @param variables  the names of substitutions
    WordMarks(Marks& marks, std::set<std::string_view> variables)
        : marks_(&marks), variables_(std::move(variables)) {
        for (std::string& word : Parser::keywords()) keywords_.insert(std::move(word));
        for (const auto& function : Parser::WrapperLib::numberFunctions())
            functions_.insert(function.keyword);
    }

    void add(std::string_view text, TextSpan where) {
        for (std::size_t at = where.at; at < where.end();) {
            if (!marks_->isFree(at) || !isWordSign(text, at)) {
                ++at;
                continue;
            }
            std::size_t end = at + 1;
            while (end < where.end() && marks_->isFree(end) &&
                   (Parser::isWordCharacter(text[end]) ||
                    (text[end] == '-' && text[at] != '-' && !Parser::isDigit(text[at]))))
                ++end;
            mark(text.substr(at, end - at), {at, end - at});
            at = end;
        }
    }

private:
    /// A word begins with a letter or a digit, an option with a sign and a letter.
    static bool isWordSign(std::string_view text, std::size_t at) {
        if (Parser::isWordCharacter(text[at])) return true;
        const bool isLetterNext = at + 1 < text.size() && Parser::isWordCharacter(text[at + 1]) &&
                                  !Parser::isDigit(text[at + 1]);
        return text[at] == '-' && isLetterNext && (at == 0 || isBlank(text[at - 1]));
    }

    void mark(std::string_view word, TextSpan where) {
        if (Parser::isDigit(word.front()))
            marks_->add(where, TokenKind::Number);
        else if (variables_.contains(word))
            marks_->add(where, TokenKind::Variable);
        else if (word.front() == '-')
            marks_->add(where, TokenKind::Option);
        else if (functions_.contains(word))
            marks_->add(where, TokenKind::Function);
        else if (keywords_.contains(word))
            marks_->add(where, word.find('_') != std::string_view::npos || word == "EMPTY"
                                   ? TokenKind::Keyword
                                   : TokenKind::Word);
    }

    Marks* marks_;
    std::set<std::string_view> variables_;
    std::set<std::string, std::less<>> keywords_;
    std::set<std::string_view> functions_;
};

void markDirectives(Marks& marks, std::string_view text) {
    const Strict::Directives found = Strict::directivesIn(text);
    const auto markWord = [&](TextSpan where, std::string_view word, std::size_t from) {
        const std::size_t at = text.substr(0, where.end()).find(word, from);
        if (at != std::string_view::npos) marks.add({at, word.size()}, TokenKind::Keyword);
    };
    for (const Strict::ParameterDirective& one : found.parameters) {
        marks.add({one.whole.at, Strict::parameterWord.size()}, TokenKind::Keyword);
        marks.add(one.name, TokenKind::Parameter, true);
        if (!one.value) continue;
        markWord(one.whole, "DEFAULT", one.name.end());
        marks.add(*one.value, TokenKind::String);
    }
    for (const Strict::IncludeDirective& one : found.includes) {
        marks.add({one.whole.at, Strict::includeWord.size()}, TokenKind::Keyword);
        for (const auto& argument : one.arguments) marks.add(argument.name, TokenKind::Parameter);
        marks.add(one.path, TokenKind::String);
        markWord(one.whole, "WITH", one.path.end());
        for (const auto& argument : one.arguments) marks.add(argument.value, TokenKind::String);
    }
}

void markStatement(Marks& marks, WordMarks& words, const Script& script,
                   const Statement& statement) {
    for (const Part& part : statement.parts) {
        const auto kind = kindOf(part.role);
        const auto place = ownPlaceOf(script, part.text);
        const bool isMaking = part.role == Role::MakesImage || Parser::makesValue.has(part.role);
        if (kind && place) marks.add(*place, *kind, isMaking);
        if (part.role == Role::Type && place &&
            part.text.find_first_of("{ \n") == std::string_view::npos)
            marks.add(*place, TokenKind::Word);
    }
    if (const auto whole = ownPlaceOf(script, trimmed(statement.text)))
        words.add(script.text(), *whole);
}

}  // namespace

std::vector<OutlineEntry> outlineOf(const Script& script) {
    const std::string_view text = script.text();
    std::vector<OutlineEntry> entries;
    const auto add = [&](OutlineEntry::Kind kind, std::string_view name, TextSpan whole,
                         TextSpan where) {
        const bool isWithin = where.at >= whole.at && where.end() <= whole.end();
        entries.push_back({kind, std::string(name), whole, isWithin ? where : whole});
    };
    const Strict::Directives found = Strict::directivesIn(text);
    for (const Strict::ParameterDirective& one : found.parameters)
        add(OutlineEntry::Kind::Parameter, one.name.in(text), trimmedSpan(text, one.whole),
            one.name);
    for (const Strict::IncludeDirective& one : found.includes)
        add(OutlineEntry::Kind::Include, one.path.in(text), trimmedSpan(text, one.whole), one.path);
    if (script.prepared() != nullptr)
        for (const Statement& statement : script.analysis().statements())
            for (const MakingRole& role : makingRoles) {
                const Part* const part = statement.last(role.role);
                const auto whole =
                    part == nullptr ? std::nullopt : ownPlaceOf(script, trimmed(statement.text));
                const auto where = whole ? ownPlaceOf(script, part->text) : std::nullopt;
                if (where) add(role.kind, part->text, *whole, *where);
            }
    std::ranges::stable_sort(entries, {}, [](const OutlineEntry& one) { return one.whole.at; });
    std::erase_if(entries, [](const OutlineEntry& one) { return one.name.empty(); });
    return entries;
}

std::vector<Fold> foldsOf(const Script& script) {
    const std::string_view text = script.text();
    std::vector<Fold> folds;
    const auto add = [&](TextSpan where, bool isRemark) {
        if (where.in(text).find('\n') != std::string_view::npos) folds.push_back({where, isRemark});
    };
    // Remarks that have lines of their own and nothing but blanks of one line between them.
    std::optional<TextSpan> run;
    for (const TextSpan remark : remarksIn(text)) {
        const std::size_t line = text.substr(0, remark.at).find_last_of('\n') + 1;
        const bool isAlone = trimmed(text.substr(line, remark.at - line)).empty();
        const bool goesOn = run && isAlone && run->end() + 1 == line;
        if (goesOn) {
            run->length = remark.end() - run->at;
            continue;
        }
        if (run) add(*run, true);
        run = isAlone ? std::optional(remark) : std::nullopt;
    }
    if (run) add(*run, true);
    for (const Strict::IncludeDirective& one : Strict::directivesIn(text).includes)
        add(trimmedSpan(text, one.whole), false);
    if (script.prepared() != nullptr)
        for (const Statement& statement : script.analysis().statements())
            if (const auto whole = ownPlaceOf(script, trimmed(statement.text))) add(*whole, false);
    std::ranges::stable_sort(folds, {}, [](const Fold& one) { return one.where.at; });
    return folds;
}

std::vector<Token> tokensOf(const Script& script, const Mentions& mentions) {
    const std::string_view text = script.text();
    Marks marks(text);
    const std::vector<TextSpan> remarks = remarksIn(text);
    for (const TextSpan& remark : remarks) marks.add(remark, TokenKind::Remark);
    std::set<std::string_view> variables;
    for (const Substitution& one : substitutionsIn(text, remarks)) {
        variables.insert(one.name.in(text));
        constexpr std::string_view word = "SUBSTITUTE";
        constexpr std::string_view with = "WITH";
        marks.add({one.whole.at, word.size()}, TokenKind::Keyword);
        marks.add(one.name, TokenKind::Variable, true);
        const std::size_t at = text.find(with, one.name.end());
        marks.add({at, with.size()}, TokenKind::Keyword);
        marks.add({at + with.size(), one.whole.end() - std::min(one.whole.end(), at + with.size())},
                  TokenKind::String);
    }
    for (const Mention& mention : mentions.all())
        if (mention.thing == Thing::Parameter && mention.where.file == 0)
            marks.add(mention.where.where, TokenKind::Parameter, mention.isMaking);
    markDirectives(marks, text);
    if (script.prepared() == nullptr) return marks.take();
    WordMarks words(marks, std::move(variables));
    for (const Statement& statement : script.analysis().statements())
        markStatement(marks, words, script, statement);
    for (const Strict::BrokenText& broken : script.analysis().broken())
        for (const Part& part : broken.begun)
            if (const auto kind = kindOf(part.role))
                if (const auto place = ownPlaceOf(script, part.text)) marks.add(*place, *kind);
    return marks.take();
}

}  // namespace Editor
