#include "parser/text/TextMap.hpp"

#include <algorithm>
#include <iterator>

#include "parser/text/Characters.hpp"

namespace Parser {

void TextStage::keep(std::size_t at, std::size_t length) {
    if (length == 0) return;
    const bool isContinued = !pieces_.empty() && pieces_.back().variable == none &&
                             pieces_.back().source + (length_ - pieces_.back().start) == at;
    if (!isContinued) pieces_.push_back({length_, at, none});
    length_ += length;
}

void TextStage::insert(std::size_t at, std::size_t length, std::size_t variable) {
    if (length == 0) return;
    pieces_.push_back({length_, at, variable});
    length_ += length;
}

void TextStage::append(const TextStage& part, std::size_t at) {
    for (std::size_t i = 0; i < part.pieces_.size(); ++i) {
        const Piece& piece = part.pieces_[i];
        const std::size_t end =
            i + 1 < part.pieces_.size() ? part.pieces_[i + 1].start : part.length_;
        if (piece.variable == none)
            keep(at + piece.source, end - piece.start);
        else
            insert(at + piece.source, end - piece.start, piece.variable);
    }
}

const TextStage::Piece& TextStage::pieceAt(std::size_t offset) const {
    const auto after = std::ranges::upper_bound(pieces_, offset, {}, &Piece::start);
    return *std::prev(after);
}

TextStage TextStage::after(const TextStage& before) const {
    TextStage result;
    for (std::size_t i = 0; i < pieces_.size(); ++i) {
        const Piece& piece = pieces_[i];
        std::size_t left = (i + 1 < pieces_.size() ? pieces_[i + 1].start : length_) - piece.start;
        std::size_t at = piece.source;
        if (piece.variable != none) {
            // An empty match takes place in an empty text as well.
            const Piece origin = before.pieces_.empty() ? Piece{0, 0, none} : before.pieceAt(at);
            const std::size_t offset = origin.variable == none ? at - origin.start : 0;
            result.insert(origin.source + offset, left, piece.variable);
            continue;
        }
        auto part = std::prev(std::ranges::upper_bound(before.pieces_, at, {}, &Piece::start));
        for (; left != 0; ++part) {
            const auto next = std::next(part);
            const std::size_t end = next == before.pieces_.end() ? before.length_ : next->start;
            const std::size_t length = std::min(left, end - at);
            if (part->variable == none)
                result.keep(part->source + (at - part->start), length);
            else
                result.insert(part->source, length, part->variable);
            at += length;
            left -= length;
        }
    }
    return result;
}

void TextMap::use(std::size_t variable, std::string_view text, std::size_t first, std::size_t last,
                  std::size_t at) {
    Variable& used = variables_[variable];
    used.isUsed = true;
    if (used.inWord || first == last) return;
    const bool isAfterWord =
        first > 0 && isWordCharacter(text[first - 1]) && isWordCharacter(text[first]);
    const bool isBeforeWord =
        last < text.size() && isWordCharacter(text[last]) && isWordCharacter(text[last - 1]);
    if (isAfterWord || isBeforeWord) used.inWord = originOf(at).offset;
}

void TextMap::add(const TextStage& stage) {
    stages_ = stages_ ? stage.after(*stages_) : stage;
}

TextOrigin TextMap::originOf(std::size_t offset) const {
    if (!stages_) return {offset, std::nullopt};
    if (stages_->pieces_.empty()) return {0, std::nullopt};
    const TextStage::Piece& piece = stages_->pieceAt(offset);
    if (piece.variable != TextStage::none && offset < stages_->length_)
        return {piece.source, piece.variable};
    const std::size_t within = piece.variable == TextStage::none ? offset - piece.start : 0;
    return {piece.source + within, std::nullopt};
}

}  // namespace Parser
