#include "parser/text/Preparation.hpp"

#include <algorithm>
#include <boost/algorithm/string/trim.hpp>
#include <cstddef>
#include <string_view>
#include <utility>

namespace Parser {

namespace {

/// Finds in `text`, line by line, each stretch from `opening` to the end of its line and removes
/// those that `take` accepts.
///
/// It replaces a regular expression and keeps three of its rules: a dot matches no carriage return,
/// a line ends at a line feed or the end of the text, and a repeated dot takes all it can.
template <class Take>
void removeStretches(std::string& text, std::string_view opening, TextMap* map, Take take) {
    TextStage stage;
    const std::string_view source = text;
    std::string kept;
    std::size_t copied = 0;
    std::size_t from = source.find(opening);
    while (from != std::string_view::npos) {
        const std::size_t lineEnd = std::min(source.find('\n', from), source.size());
        const std::string_view stretch = source.substr(from, lineEnd - from);
        const std::size_t carriageReturn = stretch.rfind('\r');
        std::size_t next = lineEnd;
        if (carriageReturn != std::string_view::npos) {
            next = from + carriageReturn + 1;
        } else if (take(stretch)) {
            kept += source.substr(copied, from - copied);
            if (map != nullptr) stage.keep(copied, from - copied);
            copied = lineEnd;
        }
        from = source.find(opening, next);
    }
    if (copied == 0) return;
    kept += source.substr(copied);
    if (map != nullptr) {
        stage.keep(copied, source.size() - copied);
        map->add(stage);
    }
    text = std::move(kept);
}

}  // namespace

void removeComments(std::string& text, TextMap* map) {
    removeStretches(text, "//", map, [](std::string_view) { return true; });
}

void takeSubstitutions(std::string& text, std::map<std::string, std::string>& variables,
                       TextMap* map) {
    constexpr std::string_view opening = "SUBSTITUTE ";
    constexpr std::string_view middle = " WITH ";
    removeStretches(text, opening, map, [&](std::string_view stretch) {
        stretch.remove_prefix(opening.size());
        const std::size_t with = stretch.rfind(middle);
        if (with == std::string_view::npos) return false;
        variables.try_emplace(
            boost::algorithm::trim_copy(std::string(stretch.substr(0, with))),
            boost::algorithm::trim_copy(std::string(stretch.substr(with + middle.size()))));
        return true;
    });
}

}  // namespace Parser
