#include "strict/script/SourceFile.hpp"

#include <algorithm>
#include <utility>

#include "util/Printable.hpp"

namespace Strict {

namespace {

using Util::characters;

/// Bytes of a long line that are shown on either side of a place.
constexpr std::size_t shownBefore = 60;
constexpr std::size_t shownAfter = 100;

/// Bytes between those places of the text for which the characters before them are known.
constexpr std::size_t blockSize = 4096;

bool isContinuation(char c) {
    constexpr unsigned mask = 0xC0;
    constexpr unsigned continuation = 0x80;
    return (static_cast<unsigned char>(c) & mask) == continuation;
}

}  // namespace

SourceFile::SourceFile(std::string name, std::string text)
    : name_(std::move(name)), text_(std::move(text)) {}

std::size_t SourceFile::lineOf(std::size_t offset) const {
    if (lineStarts_.empty()) {
        lineStarts_.push_back(0);
        for (std::size_t feed = text_.find('\n'); feed != std::string::npos;
             feed = text_.find('\n', feed + 1))
            lineStarts_.push_back(feed + 1);
    }
    const auto after = std::ranges::upper_bound(lineStarts_, offset);
    return static_cast<std::size_t>(after - lineStarts_.begin());
}

/// Counts from the last block on, so that many places in a long line cost no more than in short
/// ones.
std::size_t SourceFile::charactersBefore(std::size_t offset) const {
    const std::string_view text = text_;
    if (blocks_.empty()) {
        blocks_.reserve(text.size() / blockSize + 1);
        blocks_.push_back(0);
        for (std::size_t at = 0; at + blockSize <= text.size(); at += blockSize)
            blocks_.push_back(blocks_.back() + characters(text.substr(at, blockSize)));
    }
    const std::size_t block = offset / blockSize;
    return blocks_[block] + characters(text.substr(block * blockSize, offset % blockSize));
}

std::size_t SourceFile::charactersBetween(std::size_t begin, std::size_t end) const {
    if (end - begin < blockSize)
        return characters(std::string_view(text_).substr(begin, end - begin));
    return charactersBefore(end) - charactersBefore(begin);
}

Place SourceFile::placeOf(TextSpan part) const {
    const std::string_view text = text_;
    const std::size_t offset = std::min(part.at, text.size());
    const std::size_t line = lineOf(offset);
    const std::size_t begin = lineStarts_[line - 1];
    const std::size_t end = line < lineStarts_.size() ? lineStarts_[line] - 1 : text.size();
    const bool isShort = end - begin <= shownBefore + shownAfter;
    std::size_t from = isShort || offset - begin <= shownBefore ? begin : offset - shownBefore;
    std::size_t to = isShort || end - offset <= shownAfter ? end : offset + shownAfter;
    while (from < offset && isContinuation(text[from])) ++from;
    while (to > offset && to < end && isContinuation(text[to])) --to;
    const std::size_t last = std::min(offset + part.length, to);
    Place place;
    place.file = name_;
    place.line = line;
    place.column = charactersBetween(begin, offset) + 1;
    const std::string_view cut = "...";
    place.excerpt = from == begin ? "" : cut;
    place.caret = place.excerpt.size() + characters(text.substr(from, offset - from));
    place.excerpt += text.substr(from, to - from);
    if (to != end) place.excerpt += cut;
    place.caretLength = std::max<std::size_t>(characters(text.substr(offset, last - offset)), 1);
    return place;
}

}  // namespace Strict
