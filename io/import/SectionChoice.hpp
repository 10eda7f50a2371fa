#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace Io::Import {

/// Which sections of a file are read, by their names.
struct SectionChoice {
    std::vector<std::string> used;     ///< these alone; empty for all
    std::vector<std::string> skipped;  ///< these not, even if they are used

    /// The file is read as if nobody had asked.
    bool isEmpty() const { return used.empty() && skipped.empty(); }

    bool takes(std::string_view name) const {
        const bool isUsed = used.empty() || std::ranges::find(used, name) != used.end();
        return isUsed && std::ranges::find(skipped, name) == skipped.end();
    }
};

}  // namespace Io::Import
