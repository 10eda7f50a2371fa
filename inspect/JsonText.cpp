#include "inspect/JsonText.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <utility>

#include "inspect/Json.hpp"

namespace Inspect {

namespace {

constexpr std::size_t indent = 2;
constexpr std::size_t pieceSize = std::size_t{1} << 16U;

/// A character that strings of JSON have as it is.
bool isPlain(char c) {
    return c >= ' ' && c <= '~' && c != '"' && c != '\\';
}

}  // namespace

JsonText::JsonText(TakeText take) : take_(std::move(take)) {
    open('{');
}

void JsonText::addText(std::string_view name, std::string_view text) {
    begin(name);
    append(text);
}

void JsonText::addNumber(std::string_view name, std::uint64_t number) {
    begin(name);
    append(number);
}

void JsonText::addFlag(std::string_view name, bool value) {
    begin(name);
    text_ += value ? "true" : "false";
}

void JsonText::addText(std::string_view text) {
    begin();
    append(text);
}

void JsonText::addNumber(std::uint64_t number) {
    begin();
    append(number);
}

void JsonText::openObject() {
    begin();
    open('{');
}

void JsonText::openObject(std::string_view name) {
    begin(name);
    open('{');
}

void JsonText::openList(std::string_view name) {
    begin(name);
    open('[');
}

void JsonText::close() {
    lineStart_.resize(lineStart_.size() - indent);
    if (!isEmpty_) text_ += lineStart_;
    text_ += brackets_.back();
    brackets_.pop_back();
    isEmpty_ = false;
}

void JsonText::addArea(const Buffer::Area& area) {
    addText("start", addressText(area.start));
    addNumber("length", area.length);
}

void JsonText::addAreas(std::string_view name, const Buffer::AreaList& areas) {
    openList(name);
    for (const Buffer::Area& area : areas) {
        openObject();
        addArea(area);
        close();
    }
    close();
}

void JsonText::finish() {
    close();
    text_ += '\n';
    take_(text_);
    text_.clear();
}

/// Begins the line of an entry.
void JsonText::begin() {
    if (text_.size() >= pieceSize) {
        take_(text_);
        text_.clear();
    }
    if (!isEmpty_) text_ += ',';
    text_ += lineStart_;
    isEmpty_ = false;
}

/// Begins the line of a property.
void JsonText::begin(std::string_view name) {
    begin();
    append(name);
    text_ += ':';
    text_ += ' ';
}

void JsonText::append(std::string_view text) {
    if (std::ranges::all_of(text, &isPlain)) {
        text_ += '"';
        text_.append(text);
        text_ += '"';
    } else {
        text_ += textOf(std::string(text), -1);
    }
}

void JsonText::append(std::uint64_t number) {
    std::array<char, 20> digits{};
    char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    text_.append(digits.data(), end);
}

void JsonText::open(char bracket) {
    text_ += bracket;
    brackets_.push_back(bracket == '{' ? '}' : ']');
    lineStart_.append(indent, ' ');
    isEmpty_ = true;
}

}  // namespace Inspect
