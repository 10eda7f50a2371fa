#include "lsp/Locations.hpp"

#include "platform/Paths.hpp"
#include "strict/diagnostics/Uri.hpp"

namespace Lsp {

Json Locations::of(const Editor::FilePlace& place) {
    auto known = files_.find(place.file);
    if (known == files_.end()) known = files_.emplace(place.file, fileOf(place.file)).first;
    const File& file = known->second;
    const Editor::Text& text = file.text ? *file.text : file.open->text();
    return {{"uri", file.uri}, {"range", rangeOf(text, place.where, encoding_)}};
}

Locations::File Locations::fileOf(std::size_t number) const {
    const std::string path = Platform::absolutePath(script_->fileName(number));
    if (const Document* const open = documents_->withPath(path))
        return {open->uri(), std::nullopt, open};
    return {Strict::uriOf(path), Editor::Text(std::string(script_->fileText(number)))};
}

}  // namespace Lsp
