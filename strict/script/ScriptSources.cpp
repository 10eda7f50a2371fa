#include "strict/script/ScriptSources.hpp"

#include <algorithm>
#include <utility>

namespace Strict {

std::size_t ScriptSources::addFile(std::string name, std::string text) {
    files_.emplace_back(std::move(name), std::move(text));
    return files_.size() - 1;
}

std::size_t ScriptSources::include(std::size_t file, std::optional<std::size_t> outer,
                                   TextSpan directive) {
    inclusions_.push_back({file, length_, outer, directive});
    // The end of a text is a place of its own.
    length_ += files_[file].text().size() + 1;
    return inclusions_.size() - 1;
}

std::size_t ScriptSources::inclusionAt(std::size_t offset) const {
    const auto after = std::ranges::upper_bound(inclusions_, offset, {}, &Inclusion::begin);
    return static_cast<std::size_t>(after - inclusions_.begin()) - 1;
}

Place ScriptSources::placeOf(TextSpan part) const {
    const std::size_t number = inclusionAt(part.at);
    return placeIn(number, {part.at - inclusions_[number].begin, part.length});
}

Place ScriptSources::placeIn(std::size_t inclusion, TextSpan part) const {
    Place place = fileOf(inclusion).placeOf(part);
    for (const Inclusion* one = &inclusions_[inclusion]; one->outer;
         one = &inclusions_[*one->outer]) {
        const SourceFile& outer = fileOf(*one->outer);
        place.includedFrom.push_back({outer.name(), outer.lineOf(one->directive.at)});
    }
    return place;
}

}  // namespace Strict
