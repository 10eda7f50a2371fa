#include "strict/script/ScriptText.hpp"

#include <algorithm>
#include <utility>

#include "parser/text/Preparation.hpp"
#include "parser/text/VariableExpansion.hpp"
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

const char* wideEncodingOf(std::string_view text) {
    using namespace std::string_view_literals;
    const auto hasZeros = [text](std::size_t from, std::size_t count) {
        const std::string_view part = text.substr(std::min(from, text.size()), count);
        return part.size() == count && part.find_first_not_of('\0') == std::string_view::npos;
    };
    if (text.starts_with("\xFF\xFE\0\0"sv) || text.starts_with("\0\0\xFE\xFF"sv) ||
        hasZeros(0, 3) || hasZeros(1, 3))
        return "UTF-32";
    if (text.starts_with("\xFF\xFE"sv) || text.starts_with("\xFE\xFF"sv) ||
        (hasZeros(0, 1) && hasZeros(2, 1)) || (hasZeros(1, 1) && hasZeros(3, 1)))
        return "UTF-16";
    return nullptr;
}

ScriptText::ScriptText(std::string file, std::string text)
    : file_(std::move(file)), written_(std::move(text)), prepared_(written_) {}

ScriptText::ScriptText(std::string file, std::string written,
                       const std::map<std::string, std::string>& variables)
    : ScriptText(std::move(file), std::move(written)) {
    std::map<std::string, std::string> all = variables;
    Parser::removeComments(prepared_, &map_);
    Parser::takeSubstitutions(prepared_, all, &map_);
    Parser::expandVariables(prepared_, all, &map_);
}

std::size_t ScriptText::lineOf(std::size_t offset) const {
    if (lineStarts_.empty()) {
        lineStarts_.push_back(0);
        for (std::size_t feed = written_.find('\n'); feed != std::string::npos;
             feed = written_.find('\n', feed + 1))
            lineStarts_.push_back(feed + 1);
    }
    const auto after = std::ranges::upper_bound(lineStarts_, offset);
    return static_cast<std::size_t>(after - lineStarts_.begin());
}

/// Counts from the last block on, so that many places in a long line cost no more than in short
/// ones.
std::size_t ScriptText::charactersBefore(std::size_t offset) const {
    const std::string_view text = written_;
    if (blocks_.empty()) {
        blocks_.reserve(text.size() / blockSize + 1);
        blocks_.push_back(0);
        for (std::size_t at = 0; at + blockSize <= text.size(); at += blockSize)
            blocks_.push_back(blocks_.back() + characters(text.substr(at, blockSize)));
    }
    const std::size_t block = offset / blockSize;
    return blocks_[block] + characters(text.substr(block * blockSize, offset % blockSize));
}

std::size_t ScriptText::charactersBetween(std::size_t begin, std::size_t end) const {
    if (end - begin < blockSize)
        return characters(std::string_view(written_).substr(begin, end - begin));
    return charactersBefore(end) - charactersBefore(begin);
}

Place ScriptText::placeInFile(std::size_t offset, std::size_t length) const {
    const std::string_view text = written_;
    offset = std::min(offset, text.size());
    const std::size_t line = lineOf(offset);
    const std::size_t begin = lineStarts_[line - 1];
    const std::size_t end = line < lineStarts_.size() ? lineStarts_[line] - 1 : text.size();
    const bool isShort = end - begin <= shownBefore + shownAfter;
    std::size_t from = isShort || offset - begin <= shownBefore ? begin : offset - shownBefore;
    std::size_t to = isShort || end - offset <= shownAfter ? end : offset + shownAfter;
    while (from < offset && isContinuation(text[from])) ++from;
    while (to > offset && to < end && isContinuation(text[to])) --to;
    const std::size_t last = std::min(offset + length, to);
    Place place;
    place.file = file_;
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

Place ScriptText::placeOf(std::size_t first, std::size_t last) const {
    const Parser::TextOrigin origin = map_.originOf(first);
    if (origin.variable)
        return placeInFile(origin.offset, map_.variables()[*origin.variable].name.size());
    // What comes from the file in one piece is marked as a whole.
    const Parser::TextOrigin end = map_.originOf(last > first ? last - 1 : first);
    const bool isWhole = !end.variable && end.offset >= origin.offset;
    return placeInFile(origin.offset, isWhole ? end.offset + 1 - origin.offset : last - first);
}

Place ScriptText::placeOf(std::string_view part) const {
    const std::size_t first = offsetOf(part);
    return placeOf(first, first + part.size());
}

std::vector<Note> ScriptText::variableNotes(std::string_view part) const {
    constexpr std::size_t longestPart = 1000;
    constexpr std::size_t mostNotes = 4;
    constexpr std::size_t longestShown = 200;
    const std::size_t first = offsetOf(part);
    std::vector<std::size_t> found;
    // What is empty is the place at its beginning.
    const std::size_t length = std::clamp<std::size_t>(part.size(), 1, longestPart);
    for (std::size_t i = 0; i < length && found.size() < mostNotes; ++i) {
        const auto variable = map_.originOf(first + i).variable;
        if (variable && std::ranges::find(found, *variable) == found.end())
            found.push_back(*variable);
    }
    std::vector<Note> notes;
    for (const std::size_t index : found) {
        const auto& variable = map_.variables()[index];
        std::string value = variable.value.substr(0, longestShown);
        if (value.size() < variable.value.size()) value += "...";
        notes.push_back(
            {"the variable " + variable.name + " is replaced by \"" + value + "\"", std::nullopt});
    }
    return notes;
}

}  // namespace Strict
