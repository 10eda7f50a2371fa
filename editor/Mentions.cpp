#include "editor/Mentions.hpp"

#include <algorithm>
#include <array>
#include <set>
#include <utility>

#include "editor/Lexis.hpp"
#include "parser/grammar/Keywords.hpp"
#include "parser/grammar/Statement.hpp"
#include "strict/IncludedFile.hpp"
#include "strict/script/Directives.hpp"
#include "strict/script/FileParts.hpp"

namespace Editor {

namespace {

using Parser::Part;
using Parser::Role;

/// What a part of a role names.
struct NameRole {
    Role role;
    Thing thing;
    bool isMaking;
};

constexpr std::array nameRoles{
    NameRole{Role::MakesImage, Thing::Image, true},
    NameRole{Role::UsesImage, Thing::Image, false},
    NameRole{Role::ChangesImage, Thing::Image, false},
    NameRole{Role::MakesCrc, Thing::Crc, true},
    NameRole{Role::UsesCrc, Thing::Crc, false},
    NameRole{Role::MakesHash, Thing::Hash, true},
    NameRole{Role::UsesHash, Thing::Hash, false},
    NameRole{Role::MakesSignature, Thing::Signature, true},
    NameRole{Role::UsesSignature, Thing::Signature, false},
};

/// Collects the names of statements.
class StatementNames {
public:
    StatementNames(const Script& script, std::vector<Mention>& all)
        : script_(&script), all_(&all) {}

    void add(std::span<const Part> parts) {
        for (const Part& part : parts) {
            const auto* const row = std::ranges::find(nameRoles, part.role, &NameRole::role);
            if (row != nameRoles.end()) add(part.text, row->thing, row->isMaking);
            // A signature has a length as well.
            if (part.role == Role::MeasuresImage)
                add(part.text, isMade(Thing::Image, part.text) ? Thing::Image : Thing::Signature,
                    false);
            if (part.role == Role::UsesValue) addValue(parts, part.text);
        }
    }

private:
    bool isMade(Thing thing, std::string_view name) const {
        return made_.contains({thing, std::string(name)});
    }

    /// A name whose value replaces it in the texts of its statement.
    void addValue(std::span<const Part> parts, std::string_view name) {
        Thing thing = Thing::Crc;
        for (const Thing other : {Thing::Hash, Thing::Signature})
            if (!isMade(thing, name) && isMade(other, name)) thing = other;
        add(name, thing, false);
        for (const Part& part : parts) {
            if (part.role != Role::Text || name.empty()) continue;
            for (std::size_t at = part.text.find(name); at != std::string_view::npos;
                 at = part.text.find(name, at + name.size()))
                add(part.text.substr(at, name.size()), thing, false);
        }
    }

    void add(std::string_view name, Thing thing, bool isMaking) {
        if (name.empty()) return;
        const FilePlace where = filePlaceOf(*script_->prepared(), name);
        const bool isWritten = where.where.in(script_->fileText(where.file)) == name;
        if (isMaking) made_.emplace(thing, name);
        all_->push_back({thing, std::string(name), 0, where, isMaking, isWritten});
    }

    const Script* script_;
    std::vector<Mention>* all_;
    std::set<std::pair<Thing, std::string>> made_;
};

}  // namespace

const char* wordFor(Thing thing) {
    constexpr std::array words{"image", "CRC", "hash", "signature", "parameter"};
    return words.at(static_cast<std::size_t>(thing));
}

Mentions::Mentions(const Script& script) {
    if (script.prepared() != nullptr) addStatements(script);
    sort();
    addParameters(script);
    sort();
}

/// A file that is included several times has each place once for each name.
void Mentions::sort() {
    const auto order = [](const Mention& one, const Mention& other) {
        if (one.where != other.where) return one.where < other.where;
        if (one.thing != other.thing) return one.thing > other.thing;
        return one.name < other.name;
    };
    std::ranges::stable_sort(all_, order);
    const auto isSame = [](const Mention& one, const Mention& other) {
        return one.where == other.where && one.isOfSame(other);
    };
    all_.erase(std::unique(all_.begin(), all_.end(), isSame), all_.end());
}

void Mentions::addStatements(const Script& script) {
    StatementNames names(script, all_);
    const Strict::ScriptAnalysis& analysis = script.analysis();
    auto broken = analysis.broken().begin();
    for (std::size_t i = 0; i <= analysis.statements().size(); ++i) {
        for (; broken != analysis.broken().end() && broken->statementsBefore == i; ++broken)
            names.add(broken->begun);
        if (i != analysis.statements().size()) names.add(analysis.statements()[i].parts);
    }
}

void Mentions::addParameters(const Script& script) {
    MadeThings made;
    for (const Mention& one : all_)
        if (one.isMaking) made[one.name].insert(one.thing);
    std::vector<Strict::FileParts> files;
    for (std::size_t file = 0; file < script.fileCount(); ++file) {
        const std::string_view text = script.fileText(file);
        const Strict::FileParts& parts =
            files.emplace_back(text, [](const Strict::PartFault& /*fault*/) {});
        const auto add = [&](std::string_view name, TextSpan where, bool isMaking) {
            all_.push_back({Thing::Parameter, std::string(name), file, {file, where}, isMaking});
        };
        for (std::size_t i = 0; i < parts.parameters().size(); ++i) {
            add(parts.names()[i], parts.parameters()[i].name, true);
            if (const auto& value = parts.parameters()[i].value)
                addValue(script, made, file, *value);
        }
        for (const Strict::FileParts::Item& item : parts.items())
            if (item.what == Strict::FileParts::Item::What::Value)
                add(parts.names()[item.index], item.where, false);
        for (const Strict::IncludeDirective& include : parts.includes()) {
            for (const Strict::NamedWord& word : parts.wordsIn(include.path))
                add(parts.names()[word.name], word.where, false);
            for (const auto& argument : include.arguments)
                for (const Strict::NamedWord& word : parts.wordsIn(argument.value))
                    add(parts.names()[word.name], word.where, false);
            for (const auto& argument : include.arguments)
                addValue(script, made, file, argument.value);
        }
    }
    if (script.prepared() == nullptr) return;
    // The names that an INCLUDE gives values to are those of the included file.
    const Strict::ScriptSources& sources = script.prepared()->sources();
    for (std::size_t number = 1; number < sources.inclusionCount(); ++number) {
        const Strict::Inclusion& inclusion = sources.inclusion(number);
        const std::size_t outer = sources.inclusion(*inclusion.outer).file;
        const auto& includes = files[outer].includes();
        const auto directive = std::ranges::lower_bound(
            includes, inclusion.directive.at, {},
            [](const Strict::IncludeDirective& one) { return one.whole.at; });
        if (directive == includes.end() || directive->whole.at != inclusion.directive.at) continue;
        for (const auto& argument : directive->arguments)
            all_.push_back({Thing::Parameter,
                            std::string(argument.name.in(script.fileText(outer))),
                            inclusion.file,
                            {outer, argument.name}});
    }
}

/// The value of a parameter may be the name of things.
void Mentions::addValue(const Script& script, const MadeThings& made, std::size_t file,
                        TextSpan where) {
    const std::string_view name = where.in(script.fileText(file));
    const auto things = made.find(name);
    if (things == made.end()) return;
    for (const Thing thing : things->second)
        all_.push_back({thing, std::string(name), 0, {file, where}, false, true, true});
}

std::vector<Mention> Mentions::toRename(const Mention& mention) const {
    std::vector<Mention> all = ofSame(mention);
    const bool hasValue = std::ranges::any_of(all, &Mention::isValue);
    if (hasValue) {
        all.clear();
        for (const Mention& one : all_)
            if (one.thing != Thing::Parameter && one.name == mention.name) all.push_back(one);
    }
    const auto isParameterAt = [this](const FilePlace& where) {
        auto word = std::ranges::lower_bound(all_, where, {}, &Mention::where);
        while (word != all_.end() && word->where == where && word->thing != Thing::Parameter)
            ++word;
        return word != all_.end() && word->where == where;
    };
    // What comes from the value of a parameter changes with it.
    std::erase_if(all, [&](const Mention& one) {
        return hasValue && !one.isWritten && isParameterAt(one.where);
    });
    // Several things may have one value for their names.
    const auto isAtSame = [](const Mention& one, const Mention& other) {
        return one.where == other.where;
    };
    all.erase(std::unique(all.begin(), all.end(), isAtSame), all.end());
    return all;
}

const Mention* Mentions::at(std::size_t file, std::size_t offset) const {
    const Mention* found = nullptr;
    for (const Mention& mention : all_) {
        if (mention.where.file != file || mention.where.where.at > offset ||
            mention.where.where.end() < offset)
            continue;
        const bool isBetter =
            found == nullptr || (found->thing != Thing::Parameter &&
                                 (mention.thing == Thing::Parameter ||
                                  mention.where.where.length < found->where.where.length));
        if (isBetter) found = &mention;
    }
    return found;
}

std::vector<Mention> Mentions::ofSame(const Mention& mention) const {
    std::vector<Mention> same;
    for (const Mention& one : all_)
        if (one.isOfSame(mention)) same.push_back(one);
    return same;
}

const Mention* Mentions::makingOf(const Mention& mention) const {
    const auto found = std::ranges::find_if(
        all_, [&](const Mention& one) { return one.isMaking && one.isOfSame(mention); });
    return found == all_.end() ? nullptr : &*found;
}

std::string obstacleToRename(const Script& script, const Mentions& mentions, const Mention& mention,
                             const std::string& name) {
    const bool isParameter = mention.thing == Thing::Parameter;
    if (name.empty() || !std::ranges::all_of(name, isNameCharacter) ||
        (isParameter && !Strict::isParameterName(name)))
        return "a name consists of letters, digits and # @ _ - ! < > &";
    const std::vector<std::string> keywords = Parser::keywords();
    if (std::ranges::find(keywords, name) != keywords.end())
        return name + " is a word of the language";
    const std::vector<Mention> places = mentions.toRename(mention);
    for (const Mention& one : mentions.all()) {
        const auto isTaken = [&](const Mention& place) {
            return one.thing == place.thing && one.owner == place.owner;
        };
        if (one.name == name && std::ranges::any_of(places, isTaken))
            return std::string("there is already ") + (one.thing == Thing::Image ? "an " : "a ") +
                   wordFor(one.thing) + " called " + name;
    }
    for (const Mention& one : places) {
        const std::string& file = script.fileName(one.where.file);
        if (!one.isWritten) return "a variable or a parameter gives this name in " + file;
        for (const std::string& folder : Strict::recipeFolders())
            if (file.starts_with(folder)) return file + " is a recipe that is installed";
    }
    return "";
}

}  // namespace Editor
