#include "parser/grammar/Calculation.hpp"

#include <algorithm>
#include <cstddef>

#include "parser/grammar/ScriptSyntax.hpp"
#include "util/Hex.hpp"

namespace Parser {

namespace {

constexpr std::string_view keyword = "CALCULATE ";

std::size_t bracketsIn(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count(text, '['));
}

/// The value of the bracket expression of a text, or nothing if it has none that counts.
///
/// @param takesQueries  it may ask images and symbols
std::optional<WrapperLib::Amount> valueIn(const std::string& text, bool takesQueries) {
    const std::size_t brackets = bracketsIn(text);
    // Without a bracket there is nothing to evaluate, and no grammar need be built to find that
    // out.
    if (brackets == 0) return std::nullopt;
    ScriptSyntax syntax(nullptr);
    if (!takesQueries) syntax.state().expression.forbidQueries();
    // What counts is what the actions left behind, not whether the parse went through.
    const std::string statement = std::string(keyword) + text;
    syntax.parse(statement);
    const auto& values = syntax.state().statement.collectedValues();
    if (values.empty() || brackets != values.size()) return std::nullopt;
    return values.front();
}

/// `text` with a number in place of its bracket expressions.
std::string replaced(const std::string& text, std::uint64_t value) {
    const std::string number = " 0x" + Util::hexWord(static_cast<std::uint32_t>(value));
    std::string valued = text;
    std::size_t from = 0;
    for (std::size_t open = valued.find('['); open != std::string::npos;
         open = valued.find('[', from)) {
        const std::size_t close = valued.find(']', open);
        if (close == std::string::npos) return text;
        // The number brings a blank, which replaces the character before the bracket.
        const std::size_t first = open > from ? open - 1 : open;
        valued.replace(first, close + 1 - first, number);
        from = first + number.size();
    }
    return valued;
}

}  // namespace

std::string calculated(const std::string& text) {
    const auto value = valueIn(text, false);
    return value ? replaced(text, value->value()) : text;
}

std::optional<std::string> calculateNumbers(const std::string& text,
                                            WrapperLib::CmdContext& /*context*/) {
    return calculated(text);
}

std::optional<std::string> calculateQueries(const std::string& text,
                                            WrapperLib::CmdContext& context) {
    const auto value = valueIn(text, true);
    if (!value) return text;
    if (value->late && !value->late->resolve(context)) return std::nullopt;
    return replaced(text, value->value());
}

std::vector<Part> queriesIn(std::string_view text) {
    // What asks has brackets and parentheses, and most texts have neither.
    if (bracketsIn(text) == 0 || text.find('(') == std::string_view::npos) return {};
    ScriptSyntax syntax(nullptr);
    const std::string statement = std::string(keyword).append(text);
    syntax.state().statement.keepStatements(statement.size());
    syntax.parse(statement);
    std::vector<Part> queries;
    for (Part part : syntax.state().statement.statements().begun()) {
        const auto at = static_cast<std::size_t>(part.text.data() - statement.data());
        part.text = text.substr(at - keyword.size(), part.text.size());
        queries.push_back(part);
    }
    return queries;
}

}  // namespace Parser
