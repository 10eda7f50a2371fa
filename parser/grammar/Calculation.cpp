#include "parser/grammar/Calculation.hpp"

#include <algorithm>
#include <cstddef>

#include "parser/grammar/ScriptSyntax.hpp"
#include "util/Hex.hpp"

namespace Parser {

std::string calculated(const std::string& text) {
    const auto brackets = static_cast<std::size_t>(std::ranges::count(text, '['));
    // Without a bracket there is nothing to evaluate, and no grammar need be built to find that
    // out.
    if (brackets == 0) return text;
    ScriptSyntax syntax(nullptr);
    // What counts is what the actions left behind, not whether the parse went through.
    const std::string statement = "CALCULATE " + text;
    syntax.parse(statement);
    const auto& values = syntax.state().statement.collectedValues();
    if (values.empty() || brackets != values.size()) return text;
    const std::string number = " 0x" + Util::hexWord(values.front());
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

}  // namespace Parser
