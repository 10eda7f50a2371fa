#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>

#include "editor/Script.hpp"
#include "lsp/Documents.hpp"
#include "lsp/Json.hpp"

namespace Lsp {

/// Places in the files of a script, as locations of the protocol. Looks at a file once, however
/// many places it has.
class Locations {
public:
    /// @param documents  outlive this and do not change meanwhile, as the script
    Locations(const Documents& documents, const Editor::Script& script, Editor::Encoding encoding)
        : documents_(&documents), script_(&script), encoding_(encoding) {}

    Json of(const Editor::FilePlace& place);

private:
    struct File {
        std::string uri;
        std::optional<Editor::Text> text;  ///< unless the client has it open
        const Document* open = nullptr;
    };
    File fileOf(std::size_t number) const;

    const Documents* documents_;
    const Editor::Script* script_;
    Editor::Encoding encoding_;
    std::map<std::size_t, File> files_;  ///< by their numbers in the script
};

}  // namespace Lsp
