#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/script/SourceFile.hpp"

namespace Strict {

/// A file at one of the places at which a script includes it; the first one is the script itself.
struct Inclusion {
    std::size_t file;                  ///< its number
    std::size_t begin;                 ///< of its text, see `ScriptSources`
    std::optional<std::size_t> outer;  ///< the inclusion that has the INCLUDE
    TextSpan directive;                ///< of the INCLUDE, in the file that has it
};

/// The files of a script and the places at which they are included.
///
/// A character of the script is known by its offset in the texts of all inclusions, one after the
/// other in the order in which they are added.
class ScriptSources {
public:
    /// Adds a file and returns its number.
    std::size_t addFile(std::string name, std::string text);

    /// Adds an inclusion and returns its number. The file is not its own outer one.
    std::size_t include(std::size_t file, std::optional<std::size_t> outer = {},
                        TextSpan directive = {});

    /// All files, each once, the script itself first.
    const std::deque<SourceFile>& files() const { return files_; }

    const Inclusion& inclusion(std::size_t number) const { return inclusions_[number]; }

    /// The script itself counts.
    std::size_t inclusionCount() const { return inclusions_.size(); }

    /// The inclusion that has the character at `offset`.
    std::size_t inclusionAt(std::size_t offset) const;

    const SourceFile& fileOf(std::size_t inclusion) const {
        return files_[inclusions_[inclusion].file];
    }

    /// The place of a part of the texts, and the INCLUDEs that lead there.
    Place placeOf(TextSpan part) const;

    /// The same for a part of the text of one inclusion.
    Place placeIn(std::size_t inclusion, TextSpan part) const;

private:
    std::deque<SourceFile> files_;  ///< whose texts never move
    std::vector<Inclusion> inclusions_;
    std::size_t length_ = 0;
};

}  // namespace Strict
