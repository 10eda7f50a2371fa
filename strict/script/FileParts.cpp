#include "strict/script/FileParts.hpp"

#include <algorithm>
#include <utility>

#include "parser/grammar/Keywords.hpp"
#include "strict/script/ValueMark.hpp"

namespace Strict {

FileParts::FileParts(std::string_view text, const std::function<void(PartFault)>& report)
    : text_(text), directives_(directivesIn(text)) {
    for (const DirectiveFault& fault : directives_.faults)
        report({Kind::Syntax, fault.where, fault.text, fault.hint});
    if (const std::size_t at = text.find(ValueMark::sign); at != std::string_view::npos)
        report({Kind::Syntax, {at, 1}, "a script with directives cannot have the character 0x01"});
    findParameters(report);
    findWords(report);
    listItems();
}

std::optional<std::size_t> FileParts::indexOf(std::string_view name) const {
    const auto found = indices_.find(name);
    return found == indices_.end() ? std::nullopt : std::optional(found->second);
}

void FileParts::findParameters(const std::function<void(PartFault)>& report) {
    if (directives_.parameters.empty()) return;
    const std::vector<std::string> keywords = Parser::keywords();
    for (const ParameterDirective& directive : directives_.parameters) {
        const std::string_view name = directive.name.in(text_);
        if (std::ranges::find(keywords, name) != keywords.end()) {
            report(
                {Kind::Syntax, directive.name,
                 std::string(name) + " is a word of the language, which a parameter would replace",
                 "choose another name"});
            continue;
        }
        const auto [first, isNew] = indices_.emplace(name, names_.size());
        if (!isNew) {
            report({Kind::DuplicateName, directive.name,
                    "there is already a parameter called " + std::string(name),
                    "the first one counts", parameters_[first->second].name});
            continue;
        }
        parameters_.push_back({directive.name, directive.value});
        names_.push_back(name);
    }
}

void FileParts::findWords(const std::function<void(PartFault)>& report) {
    constexpr std::string_view substitution = "SUBSTITUTE ";
    words_ = Strict::wordsIn(text_, names_);
    // Else the value would be the name of what is replaced.
    std::erase_if(words_, [&](const NamedWord& word) {
        const bool isName = text_.substr(0, word.where.at).ends_with(substitution);
        if (isName)
            report({Kind::DuplicateName, word.where,
                    "there is already a parameter called " + std::string(names_[word.name]),
                    "write PARAMETER name DEFAULT value instead", parameters_[word.name].name});
        return isName;
    });
}

void FileParts::listItems() {
    using enum Item::What;
    for (const ParameterDirective& directive : directives_.parameters)
        items_.push_back({directive.whole, Nothing, 0});
    for (std::size_t i = 0; i < directives_.includes.size(); ++i) {
        const IncludeDirective& directive = directives_.includes[i];
        items_.push_back({directive.whole, File, i});
        use(directive.path);
        for (const auto& argument : directive.arguments) use(argument.value);
    }
    std::ranges::sort(items_, {}, [](const Item& item) { return item.where.at; });
    // Words outside of directives.
    const std::size_t directives = items_.size();
    std::size_t next = 0;
    for (const NamedWord& word : words_) {
        while (next < directives && items_[next].where.end() <= word.where.at) ++next;
        if (next < directives && items_[next].where.at <= word.where.at) continue;
        items_.push_back({word.where, Value, word.name});
        parameters_[word.name].isUsed = true;
    }
    std::ranges::inplace_merge(items_, items_.begin() + static_cast<std::ptrdiff_t>(directives), {},
                               [](const Item& item) { return item.where.at; });
}

void FileParts::use(TextSpan part) {
    for (const NamedWord& word : wordsIn(part)) parameters_[word.name].isUsed = true;
}

std::vector<NamedWord> FileParts::wordsIn(TextSpan part) const {
    const auto at = [](const NamedWord& word) { return word.where.at; };
    const auto first = std::ranges::lower_bound(words_, part.at, {}, at);
    const auto last = std::ranges::lower_bound(words_, part.end(), {}, at);
    return {first, last};
}

}  // namespace Strict
