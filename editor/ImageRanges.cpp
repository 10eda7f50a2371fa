#include "editor/ImageRanges.hpp"

#include <cstddef>
#include <vector>

#include "parser/grammar/Statement.hpp"

namespace Editor {

ImageRanges::ImageRanges(const Strict::ScriptAnalysis& analysis) {
    std::vector<std::size_t> used;
    for (const Parser::Statement& statement : analysis.statements()) {
        if (!statement.has(Parser::Role::MakesImage)) continue;
        used.clear();
        images_.findUsed(statement, used);
        if (statement.asks())
            images_.makeOpen(statement);
        else
            images_.make(statement, used, nullptr);
    }
}

std::optional<Buffer::Area> ImageRanges::rangeOf(std::string_view image) const {
    const auto number = images_.find(image);
    return number ? images_[*number].range : std::nullopt;
}

}  // namespace Editor
