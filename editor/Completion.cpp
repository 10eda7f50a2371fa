#include "editor/Completion.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "editor/Hover.hpp"
#include "editor/Lexis.hpp"
#include "io/NamedNumber.hpp"
#include "parser/commands/CmdWriteFile.hpp"
#include "parser/commands/LateNumber.hpp"
#include "parser/grammar/Expectations.hpp"
#include "parser/grammar/Keywords.hpp"
#include "parser/grammar/ScriptSyntax.hpp"
#include "parser/grammar/Statement.hpp"
#include "platform/Files.hpp"
#include "platform/Paths.hpp"
#include "strict/IncludedFile.hpp"
#include "strict/script/Directives.hpp"
#include "strict/script/FileParts.hpp"
#include "util/crc/CrcParameters.hpp"

namespace Editor {

namespace {

using Parser::Role;
using Parser::WrapperLib::CmdWriteFile;
using Parser::WrapperLib::ExportFormat;
using Parser::WrapperLib::FormatNumber;

/// Takes the place of the word that is being typed. Scripts do not have it, and it bounds words.
constexpr char mark = '\x02';

/// Where the last line of a text begins that begins with one of the words; its end if none does.
std::size_t lastLineWith(std::string_view text, const std::vector<std::string_view>& words) {
    for (std::size_t end = text.size();;) {
        const std::size_t feed = end == 0 ? std::string_view::npos : text.rfind('\n', end - 1);
        const std::size_t line = feed == std::string_view::npos ? 0 : feed + 1;
        const std::size_t begin = std::min(text.find_first_not_of(" \t", line), text.size());
        if (std::ranges::any_of(
                words, [&](std::string_view word) { return text.substr(begin).starts_with(word); }))
            return begin;
        if (feed == std::string_view::npos) return text.size();
        end = feed;
    }
}

/// What the grammar would take at the end of a text.
struct Expected {
    std::vector<std::string_view> words;  ///< of the language, and descriptions
    std::optional<Role> role;             ///< what a word there would be to its statement

    bool has(std::string_view word) const { return std::ranges::find(words, word) != words.end(); }
};

class Grammar {
public:
    /// @param statement  from its beginning up to the place in question
    Expected expectedAfter(const std::string& statement) {
        // A text in braces or quotes is one once they are closed.
        if (const char last = statement.empty() ? ' ' : statement.back();
            last == '{' || last == '"' || last == '\'')
            if (const auto role = roleAtEnd(statement + "x" + (last == '{' ? '}' : last)))
                return {{}, role};
        return {wordsAfter(statement), roleAtEnd(statement + "x")};
    }

    /// What would be there after the text. Empty if the text has an error.
    std::vector<std::string_view> wordsAfter(const std::string& text) {
        Parser::Expectations missed;
        syntax_.state().expectations = &missed;
        syntax_.parse(text);
        syntax_.state().expectations = nullptr;
        return missed.furthest == text.data() + text.size() ? missed.words
                                                            : std::vector<std::string_view>();
    }

    /// What the part is to its statement with which the text ends.
    std::optional<Role> roleAtEnd(const std::string& text) {
        syntax_.parse(text);
        const Parser::StatementList& list = syntax_.state().statement.statements();
        const char* const end = text.data() + text.size();
        std::optional<Role> role;
        const auto look = [&](std::span<const Parser::Part> parts) {
            for (const Parser::Part& part : parts)
                if (part.role != Role::Keyword && !part.text.empty() &&
                    part.text.data() + part.text.size() == end)
                    role = part.role;
        };
        if (!list.empty()) look(list[list.size() - 1].parts);
        look(list.begun());
        return role;
    }

    bool isStatement(std::string_view word) const {
        return std::ranges::find(syntax_.statementKeywords(), word) !=
               syntax_.statementKeywords().end();
    }

    const std::vector<std::string_view>& statementWords() const {
        return syntax_.statementKeywords();
    }

    Grammar() { syntax_.state().statement.keepStatements(0); }

private:
    Parser::ScriptSyntax syntax_{nullptr};
};

/// What a part with that role names.
std::optional<Thing> thingOf(Role role) {
    switch (role) {
        case Role::UsesImage:
        case Role::ChangesImage:
        case Role::MeasuresImage:
            return Thing::Image;
        case Role::UsesCrc:
            return Thing::Crc;
        case Role::UsesHash:
            return Thing::Hash;
        case Role::UsesSignature:
            return Thing::Signature;
        default:
            return std::nullopt;
    }
}

class Search {
public:
    Search(const Script& script, const Mentions& mentions, std::size_t offset)
        : script_(&script), mentions_(&mentions), text_(script.text()), offset_(offset) {
        constexpr std::string_view ends = " \t\n\v\f\r{}(),;=\"'";
        begin_ = std::min(text_.substr(0, offset_).find_last_of(ends) + 1, offset_);
        typed_ = text_.substr(begin_, offset_ - begin_);
    }

    Completions find() {
        const std::vector<TextSpan> remarks = remarksIn(text_);
        const auto isHere = [this](TextSpan one) {
            return one.at < offset_ && offset_ <= one.end();
        };
        const auto hidden = substitutionsIn(text_, remarks);
        const bool isHidden =
            std::ranges::any_of(remarks, isHere) ||
            std::ranges::any_of(hidden, [&](const Substitution& one) { return isHere(one.whole); });
        if (!isHidden && !findInDirective()) findInStatement();
        return {{begin_, offset_ - begin_}, std::move(list_)};
    }

private:
    void add(CompletionKind kind, std::string_view label, std::string_view text,
             std::string_view detail = {}) {
        list_.push_back({kind, std::string(label), std::string(text), std::string(detail)});
    }
    void add(CompletionKind kind, std::string_view label) { add(kind, label, label); }

    /// The word is in a directive, which knows what it takes.
    bool findInDirective() {
        std::vector<std::string_view> words = grammar_.statementWords();
        words.insert(words.end(), {Strict::parameterWord, Strict::includeWord});
        const std::string_view before = text_.substr(0, begin_);
        const std::size_t at = lastLineWith(before, words);
        const std::string_view line = before.substr(at);
        if (line.starts_with(Strict::parameterWord)) return findInParameter(line);
        return line.starts_with(Strict::includeWord) && findInInclude(line);
    }

    bool findInParameter(std::string_view line) {
        if (line.find('\n') != std::string_view::npos) return false;
        const std::string_view name = trimmed(line.substr(Strict::parameterWord.size()));
        const bool isNamed = !name.empty() && name.find(' ') == std::string_view::npos;
        if (isNamed) add(CompletionKind::Directive, "DEFAULT");
        return true;
    }

    bool findInInclude(std::string_view line) {
        const std::string_view rest = line.substr(Strict::includeWord.size());
        const bool isOpen =
            rest.rfind('{') != std::string_view::npos &&
            (rest.rfind('}') == std::string_view::npos || rest.rfind('}') < rest.rfind('{'));
        const std::size_t with = rest.find("WITH");
        if (with != std::string_view::npos && isOpen) {
            const std::string_view last = trimmed(rest);
            if (last.ends_with('{') || last.ends_with(','))
                addParametersOf(pathIn(rest.substr(0, with)));
            else
                addNames();
            return true;
        }
        if (rest.find('\n') != std::string_view::npos) return false;
        const std::string_view path = trimmed(rest);
        if (path.empty() || path == "{" || path == "\"" || path == "'") {
            addIncludedFiles();
            return true;
        }
        add(CompletionKind::Directive, "WITH", "WITH { ");
        return true;
    }

    static std::string pathIn(std::string_view text) {
        std::string path(trimmed(text));
        std::erase_if(path, [](char c) { return c == '{' || c == '}' || c == '"' || c == '\''; });
        return path;
    }

    /// The parameters of a file that is included, which may not be a part of the script yet.
    void addParametersOf(const std::string& path) {
        const std::string& name = script_->name();
        std::vector<std::string> candidates{name.substr(0, Platform::fileNameStart(name)) + path};
        for (const std::string& folder : Strict::recipeFolders())
            candidates.push_back(folder + path);
        for (const std::string& candidate : candidates) {
            const auto text = script_->textOf(candidate);
            if (!text) continue;
            const Strict::FileParts parts(*text, [](const Strict::PartFault& /*fault*/) {});
            for (std::size_t i = 0; i < parts.names().size(); ++i) {
                const auto& value = parts.parameters()[i].value;
                add(CompletionKind::Parameter, parts.names()[i],
                    std::string(parts.names()[i]) + "=",
                    value ? "default " + std::string(value->in(*text)) : "needs a value");
            }
            return;
        }
    }

    void addIncludedFiles() {
        const std::string& name = script_->name();
        addFiles(name.substr(0, Platform::fileNameStart(name)), ".tsn");
        for (const std::string& folder : Strict::recipeFolders()) addFiles(folder, ".tsn");
    }

    /// The files and folders in the folder of what was typed.
    ///
    /// @param base  where a path begins that is not absolute
    void addFiles(const std::string& base, std::string_view ending = {}) {
        constexpr std::size_t most = 1000;
        const std::string typed(typed_);
        const std::string folder = typed.substr(0, Platform::fileNameStart(typed));
        auto entries = Platform::entriesOf(folder.starts_with('/') ? folder : base + folder, most);
        std::ranges::sort(entries, {}, &Platform::FolderEntry::name);
        for (const Platform::FolderEntry& entry : entries) {
            if (entry.name.starts_with('.') || (!entry.isFolder && !entry.name.ends_with(ending)))
                continue;
            const std::string path = folder + entry.name + (entry.isFolder ? "/" : "");
            add(entry.isFolder ? CompletionKind::Folder : CompletionKind::File, path);
        }
    }

    void findInStatement() {
        std::string marked(text_);
        marked.replace(begin_, offset_ - begin_, 1, mark);
        const KnownScript known = script_->known(std::move(marked));
        if (known.analysis->text() == nullptr) return;
        const std::string_view prepared = known.analysis->text()->prepared();
        const std::size_t at = prepared.find(mark);
        if (at == std::string_view::npos) return;
        const std::string_view before = prepared.substr(0, at);
        const std::string statement(before.substr(lastLineWith(before, grammar_.statementWords())));
        const Expected expected = grammar_.expectedAfter(statement);
        addWords(expected, statement);
        if (expected.role) addForRole(*expected.role);
        if (expected.has("a number")) addNames();
    }

    void addWords(const Expected& expected, const std::string& statement) {
        bool takesStatement = false;
        for (const std::string_view word : expected.words) {
            const bool isWord = word.find(' ') == std::string_view::npos && (word.size() > 1) &&
                                word != "CALCULATE";
            if (!isWord) continue;
            if (grammar_.isStatement(word))
                takesStatement = true;
            else
                addWord(word, statement);
        }
        if (takesStatement && isFirstInLine()) {
            for (const Parser::StatementWord& word : Parser::statementWords())
                add(CompletionKind::Statement, word.keyword, word.keyword + " ", word.meaning);
            add(CompletionKind::Directive, Strict::includeWord, "INCLUDE ",
                "puts the text of another file in its place");
            add(CompletionKind::Directive, Strict::parameterWord, "PARAMETER ",
                "declares what the script expects from its caller");
            add(CompletionKind::Directive, "SUBSTITUTE", "SUBSTITUTE ",
                "replaces a word in the script");
        }
        if (!expected.has("a number")) return;
        for (const auto& function : Parser::WrapperLib::numberFunctions())
            add(CompletionKind::Function, function.keyword, std::string(function.keyword) + "(",
                function.meaning);
    }

    bool isFirstInLine() const {
        const std::size_t line = text_.substr(0, begin_).find_last_of('\n') + 1;
        return trimmed(text_.substr(line, begin_ - line)).empty();
    }

    void addWord(std::string_view word, const std::string& statement) {
        const auto formats = CmdWriteFile::formats();
        const auto format = std::ranges::find_if(
            formats, [&](const ExportFormat& one) { return word == one.keyword; });
        if (format != formats.end()) {
            addFormat(*format);
            return;
        }
        const std::vector<std::string_view> next =
            grammar_.wordsAfter(statement + std::string(word));
        const auto goesOnWith = [&](std::string_view sign) {
            return std::ranges::find(next, sign) != next.end();
        };
        if (word == "Catalogue") addCatalogue();
        std::string text(word);
        if (goesOnWith("="))
            text += '=';
        else if (goesOnWith("{") && statement.ends_with('='))
            text += '{';
        const bool isOption = word.starts_with('-');
        std::string detail = isOption ? "" : descriptionOfType(word);
        add(isOption ? CompletionKind::Option : CompletionKind::Word, word, text, detail);
    }

    void addCatalogue() {
        for (const auto& entry : Util::Crc::catalogue()) {
            const std::string text = "Catalogue{" + std::string(entry.name) + "}";
            add(CompletionKind::Word, text, text, descriptionOfType(entry.name));
        }
    }

    void addFormat(const ExportFormat& format) {
        const std::string keyword = format.keyword;
        const bool needsMore =
            format.numberForm == FormatNumber::Required || format.numberForm == FormatNumber::Named;
        add(CompletionKind::Word, keyword, keyword + (needsMore ? "_" : ""), format.meaning);
        if (format.numberForm != FormatNumber::Named) return;
        for (const Io::NamedNumber& name : format.names())
            add(CompletionKind::Word, keyword + "_" + std::string(name.name),
                keyword + "_" + std::string(name.name), format.meaning);
    }

    void addForRole(Role role) {
        constexpr Parser::Roles files{Role::InputFile, Role::Template, Role::OutputFile,
                                      Role::SymbolFile, Role::KeyFile};
        if (files.has(role)) addFiles("");
        if (const auto thing = thingOf(role)) addThings(*thing);
        // A signature has a length.
        if (role == Role::MeasuresImage) addThings(Thing::Signature);
        if (role == Role::UsesValue)
            for (const Thing thing : {Thing::Crc, Thing::Hash, Thing::Signature}) addThings(thing);
        addNames();
    }

    void addThings(Thing thing) {
        std::set<std::string_view> known;
        for (const Mention& mention : mentions_->all())
            if (mention.isMaking && mention.thing == thing && known.insert(mention.name).second)
                add(thing == Thing::Image ? CompletionKind::Image : CompletionKind::Value,
                    mention.name, mention.name, wordFor(thing));
    }

    /// What is replaced, wherever it is.
    void addNames() {
        if (std::exchange(hasNames_, true)) return;
        for (const Mention& mention : mentions_->all())
            if (mention.isMaking && mention.thing == Thing::Parameter && mention.owner == 0)
                add(CompletionKind::Parameter, mention.name, mention.name, "parameter");
        for (const Substitution& one : substitutionsIn(text_, remarksIn(text_)))
            add(CompletionKind::Variable, one.name.in(text_), one.name.in(text_), one.value);
    }

    const Script* script_;
    const Mentions* mentions_;
    std::string_view text_;
    std::size_t offset_;
    std::size_t begin_ = 0;  ///< of the word that is being typed
    std::string_view typed_;
    Grammar grammar_;
    std::vector<Completion> list_;
    bool hasNames_ = false;
};

}  // namespace

Completions completionsAt(const Script& script, const Mentions& mentions, std::size_t offset) {
    return Search(script, mentions, std::min(offset, script.text().size())).find();
}

}  // namespace Editor
