#include "editor/Lexis.hpp"

#include <algorithm>
#include <map>

#include "parser/text/Characters.hpp"
#include "parser/text/Preparation.hpp"

namespace Editor {

namespace {

constexpr std::string_view blanks = " \t\n\v\f\r";

}  // namespace

bool isBlank(char c) {
    return blanks.find(c) != std::string_view::npos;
}

bool isNameCharacter(char c) {
    constexpr std::string_view others = "#@-!<>&";
    return Parser::isWordCharacter(c) || others.find(c) != std::string_view::npos;
}

std::string_view trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

std::vector<TextSpan> remarksIn(std::string_view text) {
    std::vector<TextSpan> remarks;
    for (std::size_t at = text.find("//"); at != std::string_view::npos;) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        // A carriage return within a line ends what a remark hides.
        const std::size_t stop = text.substr(at, end - at).rfind('\r');
        if (stop == std::string_view::npos) remarks.push_back({at, end - at});
        at = text.find("//", stop == std::string_view::npos ? end : at + stop + 1);
    }
    return remarks;
}

std::vector<Substitution> substitutionsIn(std::string_view text,
                                          const std::vector<TextSpan>& remarks) {
    constexpr std::string_view opening = "SUBSTITUTE ";
    std::vector<Substitution> found;
    auto remark = remarks.begin();
    for (std::size_t at = text.find(opening); at != std::string_view::npos;) {
        while (remark != remarks.end() && remark->end() <= at) ++remark;
        const std::size_t feed = std::min(text.find('\n', at), text.size());
        const bool isHidden = remark != remarks.end() && remark->at <= at;
        const std::size_t end = remark != remarks.end() ? std::min(remark->at, feed) : feed;
        const std::size_t next = isHidden ? remark->end() : feed;
        if (!isHidden) {
            std::string line(text.substr(at, end - at));
            std::map<std::string, std::string> variables;
            Parser::takeSubstitutions(line, variables);
            if (!variables.empty()) {
                const auto& [name, value] = *variables.begin();
                const std::size_t begin =
                    name.empty() ? at + opening.size() : text.find(name, at + opening.size());
                // The blank after WITH is needed in front of nothing.
                const std::size_t last = text.substr(at, end - at).find_last_not_of(blanks) + 1;
                found.push_back(
                    {{at, value.empty() ? end - at : last}, {begin, name.size()}, value});
            }
        }
        at = text.find(opening, next);
    }
    return found;
}

TextSpan trimmedSpan(std::string_view text, TextSpan span) {
    return {span.at, trimmed(span.in(text)).size()};
}

}  // namespace Editor
