#include "editor/Text.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Editor {

namespace {

constexpr char endOfText = 0x1A;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// The bytes of a character of UTF-8 by its first one; 1 for a byte that begins none.
std::size_t lengthOf(unsigned char first) {
    constexpr unsigned char two = 0xC0;
    constexpr unsigned char three = 0xE0;
    constexpr unsigned char four = 0xF0;
    constexpr unsigned char none = 0xF8;
    if (first < two || first >= none) return 1;
    if (first < three) return 2;
    return first < four ? 3 : 4;
}

/// The units of a character of so many bytes.
std::size_t unitsOf(std::size_t length, Encoding encoding) {
    if (encoding == Encoding::Utf8) return length;
    constexpr std::size_t outsideOfPlane = 4;
    return length == outsideOfPlane ? 2 : 1;
}

}  // namespace

Text::Text(std::string raw) : raw_(std::move(raw)) {
    findLines();
    if (raw_.starts_with(byteOrderMark))
        for (std::size_t i = byteOrderMark.size(); i > 0; --i)
            dropped_.insert(dropped_.begin(), i - 1);
    if (const std::size_t end = raw_.find(endOfText); end != std::string::npos) {
        std::erase_if(dropped_, [end](std::size_t at) { return at >= end; });
        for (std::size_t at = end; at < raw_.size(); ++at) dropped_.push_back(at);
    }
    if (dropped_.empty()) return;
    read_.reserve(raw_.size() - dropped_.size());
    std::size_t copied = 0;
    for (const std::size_t at : dropped_) {
        read_.append(raw_, copied, at - copied);
        copied = at + 1;
    }
    read_.append(raw_, copied);
}

void Text::findLines() {
    lines_.push_back(0);
    for (std::size_t at = 0; at < raw_.size(); ++at) {
        if (raw_[at] != '\r' && raw_[at] != '\n') continue;
        const bool isPair = raw_[at] == '\r' && raw_.compare(at + 1, 1, "\n") == 0;
        endsWithPairs_ = endsWithPairs_ || (lines_.size() == 1 && isPair);
        addMilestones(lines_.back(), at);
        if (isPair) dropped_.push_back(at++);
        lines_.push_back(at + 1);
    }
    addMilestones(lines_.back(), raw_.size());
}

/// Makes the columns of every few characters of a long line known, so that no column takes a walk
/// from the start of its line.
void Text::addMilestones(std::size_t begin, std::size_t end) {
    constexpr std::size_t distance = 256;
    if (end - begin <= distance) return;
    Milestone character{begin, 0};
    for (std::size_t next = begin + distance; character.at < end;) {
        const std::size_t length = lengthOf(static_cast<unsigned char>(raw_[character.at]));
        character.at += length;
        character.column += unitsOf(length, Encoding::Utf16);
        if (character.at < next || character.at >= end) continue;
        milestones_.push_back(character);
        next = character.at + distance;
    }
}

Text::Milestone Text::milestoneBefore(std::vector<Milestone>::const_iterator next,
                                      std::size_t line) const {
    const bool isInLine = next != milestones_.begin() && std::prev(next)->at > line;
    return isInLine ? *std::prev(next) : Milestone{line, 0};
}

Position Text::positionOf(std::size_t offset, Encoding encoding) const {
    offset = std::min(offset, raw_.size());
    const auto after = std::ranges::upper_bound(lines_, offset);
    const std::size_t line = *std::prev(after);
    const Milestone known =
        milestoneBefore(std::ranges::upper_bound(milestones_, offset, {}, &Milestone::at), line);
    Position position{static_cast<std::size_t>(after - lines_.begin()) - 1,
                      known.columnIn(encoding, line)};
    for (std::size_t at = known.at; at < offset;) {
        const std::size_t length = lengthOf(static_cast<unsigned char>(raw_[at]));
        position.column += unitsOf(length, encoding);
        at += length;
    }
    return position;
}

std::size_t Text::offsetOf(Position position, Encoding encoding) const {
    if (position.line >= lines_.size()) return raw_.size();
    const std::size_t line = lines_[position.line];
    std::size_t end = position.line + 1 < lines_.size() ? lines_[position.line + 1] : raw_.size();
    while (end > line && (raw_[end - 1] == '\n' || raw_[end - 1] == '\r')) --end;
    const auto first = std::ranges::upper_bound(milestones_, line, {}, &Milestone::at);
    const auto last =
        std::lower_bound(first, milestones_.end(), end,
                         [](const Milestone& one, std::size_t offset) { return one.at < offset; });
    const auto isBefore = [&](const Milestone& one) {
        return one.columnIn(encoding, line) <= position.column;
    };
    const Milestone known = milestoneBefore(std::partition_point(first, last, isBefore), line);
    std::size_t at = known.at;
    for (std::size_t column = known.columnIn(encoding, line);
         at < end && column < position.column;) {
        const std::size_t length = lengthOf(static_cast<unsigned char>(raw_[at]));
        column += unitsOf(length, encoding);
        if (column > position.column) break;  // within a character
        at = std::min(at + length, end);
    }
    return at;
}

std::size_t Text::rawOf(std::size_t offset) const {
    // The dropped byte of index i is before the byte `offset` if i of the bytes before it stay.
    std::size_t first = 0;
    std::size_t last = dropped_.size();
    while (first < last) {
        const std::size_t middle = first + (last - first) / 2;
        if (dropped_[middle] - middle <= offset)
            first = middle + 1;
        else
            last = middle;
    }
    return std::min(offset + first, raw_.size());
}

std::size_t Text::readOf(std::size_t offset) const {
    const auto before = std::ranges::lower_bound(dropped_, offset) - dropped_.begin();
    return std::min(offset - static_cast<std::size_t>(before), read().size());
}

TextSpan Text::rawOf(TextSpan part) const {
    const std::size_t begin = rawOf(part.at);
    const std::size_t end = part.length == 0 ? begin : rawOf(part.end() - 1) + 1;
    return {begin, end - begin};
}

Edit Text::rawOf(const Edit& edit) const {
    // A line end that is replaced is replaced with its carriage return.
    const std::size_t begin = edit.where.at == 0 ? rawOf(0) : rawOf(edit.where.at - 1) + 1;
    const std::size_t end = edit.where.length == 0 ? begin : rawOf(edit.where.end() - 1) + 1;
    Edit raw{{begin, end - begin}, {}};
    for (const char c : edit.text) {
        if (c == '\n' && endsWithPairs_) raw.text += '\r';
        raw.text += c;
    }
    return raw;
}

std::string edited(std::string_view text, const std::vector<Edit>& edits) {
    std::string result;
    std::size_t copied = 0;
    for (const Edit& edit : edits) {
        result.append(text, copied, edit.where.at - copied).append(edit.text);
        copied = edit.where.end();
    }
    return result.append(text, copied);
}

std::size_t characterStart(std::string_view text, std::size_t offset) {
    constexpr unsigned char mask = 0xC0;
    constexpr unsigned char continuation = 0x80;
    const auto continues = [text](std::size_t at) {
        return at < text.size() && (static_cast<unsigned char>(text[at]) & mask) == continuation;
    };
    while (offset > 0 && continues(offset)) --offset;
    return offset;
}

}  // namespace Editor
