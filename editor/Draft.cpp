#include "editor/Draft.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Editor {

Draft::Draft(std::string_view text, Encoding encoding)
    : encoding_(encoding), pieces_(piecesOf(text)) {}

std::vector<Draft::Piece> Draft::piecesOf(std::string_view text) const {
    constexpr std::size_t longest = 2048;
    std::vector<Piece> pieces;
    do {
        std::size_t length = text.size();
        if (length > longest) length = std::max<std::size_t>(characterStart(text, longest), 1);
        if (length < text.size() && text[length - 1] == '\r' && text[length] == '\n') ++length;
        Text piece(std::string(text.substr(0, length)));
        const std::size_t columns = piece.positionOf(length, encoding_).column;
        pieces.push_back({std::move(piece), columns});
        text.remove_prefix(length);
    } while (!text.empty());
    return pieces;
}

Draft::Place Draft::placeOf(Position position) const {
    std::size_t i = 0;
    for (; i + 1 < pieces_.size(); ++i) {
        const std::size_t lineEnds = pieces_[i].text.lineEnds();
        if (position.line < lineEnds) break;
        // Its last line may go on in the next piece.
        if (position.line == lineEnds && position.column <= pieces_[i].columns) break;
        position.line -= lineEnds;
        if (position.line == 0) position.column -= pieces_[i].columns;
    }
    return {i, pieces_[i].text.offsetOf(position, encoding_)};
}

void Draft::replace(Position from, Position to, std::string_view with) {
    Place begin = placeOf(from);
    Place end = placeOf(to);
    if (end < begin) std::swap(begin, end);
    const auto rawOf = [this](std::size_t piece) -> const std::string& {
        return pieces_[piece].text.raw();
    };
    std::string text = rawOf(begin.piece).substr(0, begin.offset);
    text.append(with).append(rawOf(end.piece), end.offset);
    // What becomes a CR LF is in one piece.
    const auto isJoined = [](const std::string& one, const std::string& other) {
        return one.ends_with('\r') && other.starts_with('\n');
    };
    if (begin.piece > 0 && (text.empty() || isJoined(rawOf(begin.piece - 1), text)))
        text.insert(0, rawOf(--begin.piece));
    if (end.piece + 1 < pieces_.size() && isJoined(text, rawOf(end.piece + 1)))
        text += rawOf(++end.piece);
    std::vector<Piece> made = piecesOf(text);
    // In the place of the old ones, so that the others are moved only if their number changes.
    const std::size_t kept = std::min(made.size(), end.piece - begin.piece + 1);
    const auto rest = made.begin() + static_cast<std::ptrdiff_t>(kept);
    const auto next =
        std::move(made.begin(), rest, pieces_.begin() + static_cast<std::ptrdiff_t>(begin.piece));
    const auto last = pieces_.begin() + static_cast<std::ptrdiff_t>(end.piece) + 1;
    pieces_.insert(pieces_.erase(next, last), std::make_move_iterator(rest),
                   std::make_move_iterator(made.end()));
}

std::string Draft::text() const {
    std::string text;
    for (const Piece& piece : pieces_) text += piece.text.raw();
    return text;
}

}  // namespace Editor
