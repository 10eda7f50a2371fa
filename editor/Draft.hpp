#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "editor/Text.hpp"

namespace Editor {

/// A text in UTF-8 while an editor changes it, in pieces of some KB: a change costs no more in a
/// long text, or in a long line, than in a short one.
class Draft {
public:
    Draft(std::string_view text, Encoding encoding);

    /// Replaces what is between two places, in either order, as `Text::offsetOf` finds them.
    void replace(Position from, Position to, std::string_view with);

    std::string text() const;

private:
    struct Piece {
        Text text;
        std::size_t columns;  ///< of its last line
    };
    struct Place {
        std::size_t piece;
        std::size_t offset;  ///< in the piece
        auto operator<=>(const Place&) const = default;
    };

    std::vector<Piece> piecesOf(std::string_view text) const;
    Place placeOf(Position position) const;

    Encoding encoding_;
    /// Each but the first has a byte, and ends between two characters and outside of CR LF.
    std::vector<Piece> pieces_;
};

}  // namespace Editor
