#pragma once

#include <optional>
#include <string_view>

#include "buffer/Area.hpp"
#include "strict/ScriptAnalysis.hpp"
#include "strict/meaning/Images.hpp"

namespace Editor {

/// The ranges of a script's images, as far as the script alone says them.
class ImageRanges {
public:
    explicit ImageRanges(const Strict::ScriptAnalysis& analysis);

    /// Nothing if it hangs on a file, or if there is no such image.
    std::optional<Buffer::Area> rangeOf(std::string_view image) const;

private:
    Strict::Images images_;
};

}  // namespace Editor
